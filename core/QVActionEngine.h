#pragma once

#include "QVCustomControlRepresentation.h"
#include "QVDisplay.h"

#include <functional>
#include <optional>

struct QVEvent;
class QVDelayedPerformer;
class QVDisplayService;
class QVPointerEventService;
class QVScreenSectionPresenter;

// Carries out a custom control's action: finds the display under the pointer,
// computes the target and posts the pointer events.
class QVActionEngine final
{
public:
    using ControlsProvider = std::function<QList<QVCustomControlRef>()>;

    // clickTimer lets a click's button go after it has been held down a moment.
    QVActionEngine(QVDisplayService &displays, QVPointerEventService &pointer, ControlsProvider controls,
        QVDelayedPerformer &clickTimer);

    // Called for action 51; without one that action does nothing.
    void setScreenSectionPresenter(QVScreenSectionPresenter *presenter) { m_screenSection = presenter; }

    // Performs the given control, or else the first whose hot key matches the event.
    // False only when no control was given and none matches. shouldRepeat is set
    // (never cleared) when the action wants to be repeated while the key is held.
    bool performActionTriggeredByControl(
        QVCustomControlRepresentation *control, const QVEvent *event, bool isRepetition, bool *shouldRepeat);

    quint64 repetitionCounter() const { return m_repetitionCounter; }
    // Lets go of the button of a click still held down (it is let go on its own soon).
    void finishPendingClick();

private:
    QVCustomControlRef controlMatchingEvent(const QVEvent *event) const;
    QVPoint movedPoint(const QVCustomControlRepresentation &control, const QVPoint &location, const QVDisplay *display,
        const QVDisplayList &displays) const;
    void click(bool rightButton);

    QVDisplayService &m_displays;
    QVPointerEventService &m_pointer;
    ControlsProvider m_controls;
    QVDelayedPerformer &m_clickTimer;
    std::optional<bool> m_pendingClickIsRight; // the button held down by a click
    QVScreenSectionPresenter *m_screenSection = nullptr;
    quint64 m_repetitionCounter = 0;
};
