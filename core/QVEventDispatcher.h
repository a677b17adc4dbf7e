#pragma once

#include "QVEvent.h"

#include <functional>

class QVDelayedPerformer;
class QVKeyboardService;

// Routes key and hot key events to the action engine and repeats the action of a
// held hot key at the user's key repeat rate until the key is released.
class QVEventDispatcher final
{
public:
    // The engine call: (event, isRepetition, shouldRepeat) -> claimed.
    using ActionPerformer = std::function<bool(const QVEvent *, bool, bool *)>;
    using NormalDispatch = std::function<void(const QVEventRef &)>;

    QVEventDispatcher(ActionPerformer perform, NormalDispatch dispatchNormally, const QVKeyboardService &keyboard,
                      QVDelayedPerformer &delayedPerformer);

    void sendEvent(const QVEventRef &event);
    // Schedules the next repetition of the event; nothing stops repetition.
    void triggerRepetitionForSystemDefinedEvent(const QVEventRef &event);
    void repeatSystemDefinedEvent();

    QVEventRef eventToRepeat() const { return m_eventToRepeat; }

private:
    double initialDelay() const;

    ActionPerformer m_perform;
    NormalDispatch m_dispatchNormally;
    const QVKeyboardService &m_keyboard;
    QVDelayedPerformer &m_delayedPerformer;
    QVEventRef m_eventToRepeat;
};
