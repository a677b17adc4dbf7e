#include "QVEventDispatcher.h"

#include "QVDelayedPerformer.h"
#include "QVKeyboardService.h"

namespace {
constexpr double ticksPerSecond = 60.0;
constexpr double shortestUsableDelay = 0.01;
constexpr double fallbackDelay = 0.5;
} // namespace

QVEventDispatcher::QVEventDispatcher(ActionPerformer perform, NormalDispatch dispatchNormally,
                                     const QVKeyboardService &keyboard, QVDelayedPerformer &delayedPerformer)
    : m_perform(std::move(perform)),
      m_dispatchNormally(std::move(dispatchNormally)),
      m_keyboard(keyboard),
      m_delayedPerformer(delayedPerformer)
{
}

void QVEventDispatcher::sendEvent(const QVEventRef &event)
{
    bool shouldRepeat = false;
    switch (event->type) {
    case QVEvent::KeyDown:
        if (m_perform(event.get(), false, &shouldRepeat))
            triggerRepetitionForSystemDefinedEvent(nullptr);
        else
            m_dispatchNormally(event);
        return;
    case QVEvent::SystemDefined:
        if (event->subtype == QVEvent::HotKeyReleased) {
            triggerRepetitionForSystemDefinedEvent(nullptr);
            return;
        }
        if (m_perform(event.get(), false, &shouldRepeat))
            triggerRepetitionForSystemDefinedEvent(shouldRepeat ? event : nullptr);
        else
            m_dispatchNormally(event);
        return;
    default:
        m_dispatchNormally(event);
        return;
    }
}

void QVEventDispatcher::triggerRepetitionForSystemDefinedEvent(const QVEventRef &event)
{
    m_delayedPerformer.cancelPreviousPerformRequests();
    if (!event) {
        m_eventToRepeat.reset();
        return;
    }
    double delay = initialDelay();
    if (event != m_eventToRepeat) {
        m_eventToRepeat = event;
    } else {
        // An unusable interval falls back to the initial delay, on purpose.
        const double interval = m_keyboard.keyRepeatThresholds().repeatTicks / ticksPerSecond;
        if (interval >= shortestUsableDelay)
            delay = interval;
    }
    m_delayedPerformer.performAfterDelay(delay, [this] { repeatSystemDefinedEvent(); });
}

void QVEventDispatcher::repeatSystemDefinedEvent()
{
    if (!m_eventToRepeat)
        return;
    const QVEventRef event = m_eventToRepeat;
    bool shouldRepeat = false;
    if (m_perform(event.get(), true, &shouldRepeat) && shouldRepeat)
        triggerRepetitionForSystemDefinedEvent(event);
}

double QVEventDispatcher::initialDelay() const
{
    const double delay = m_keyboard.keyRepeatThresholds().initialTicks / ticksPerSecond;
    return delay < shortestUsableDelay ? fallbackDelay : delay;
}
