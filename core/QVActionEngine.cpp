#include "QVActionEngine.h"

#include "QVDelayedPerformer.h"
#include "QVDisplayService.h"
#include "QVEvent.h"
#include "QVLog.h"
#include "QVPointerEvents.h"
#include "QVScreenGeometry.h"
#include "QVScreenSectionPresenter.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace
{

constexpr quint64 largestAccelerationFactor = 150;
constexpr double clickHoldSeconds = 0.05;

QVPoint edgeOrCornerPoint(qint64 position, QVPoint target, const QVRect &frame)
{
    if (QVCorvanePositionIncludesTop(position))
        target.y = frame.maxY();
    else if (QVCorvanePositionIncludesBottom(position))
        target.y = frame.y;
    if (QVCorvanePositionIncludesRight(position))
        target.x = frame.maxX();
    else if (QVCorvanePositionIncludesLeft(position))
        target.x = frame.x;
    // "Right edge" is the display's last column even where a neighbour starts beyond it.
    return QVPointConfinedToDisplayPixels(frame, target);
}

QVPoint otherDisplayPoint(
    const QVCustomControlRepresentation &control, const QVPoint &location, const QVRect &from, const QVRect &to)
{
    QVPoint target;
    if (control.moveToOtherDisplayReposition()) {
        target.x = QVFloorCGFloat((location.x - from.x) * to.width / from.width) + to.x;
        target.y = QVFloorCGFloat((location.y - from.y) * to.height / from.height) + to.y;
    } else {
        target.x = to.x - from.x + location.x;
        target.y = to.y - from.y + location.y;
    }
    return QVPointConfinedToDisplayPixels(to, target);
}

} // namespace

QVActionEngine::QVActionEngine(QVDisplayService &displays, QVPointerEventService &pointer, ControlsProvider controls,
    QVDelayedPerformer &clickTimer)
    : m_displays(displays)
    , m_pointer(pointer)
    , m_controls(std::move(controls))
    , m_clickTimer(clickTimer)
{
}

bool QVActionEngine::performActionTriggeredByControl(
    QVCustomControlRepresentation *control, const QVEvent *event, bool isRepetition, bool *shouldRepeat)
{
    m_repetitionCounter = isRepetition ? m_repetitionCounter + 1 : 0;
    QVCustomControlRef matched; // keeps the control alive while it runs
    if (!control) {
        matched = controlMatchingEvent(event);
        if (!matched)
            return false;
        control = matched.get();
    }
    // A click goes where the pointer is: no need to ask the window system where that is.
    if (control->action() == QVAction::Click || control->action() == QVAction::RightClick) {
        click(control->action() == QVAction::RightClick);
        return true;
    }

    const QVDisplayService::Snapshot snapshot = m_displays.displaysAndMouseLocation();
    const QVDisplayList &displays = snapshot.displays;
    const QVPoint location = snapshot.mouseLocation;
    const QVDisplay *display = screenAtPosition(QVPosition::None, location, displays);
    const QVRect frame = display ? display->frame : QVRect {};
    QVPoint target = location;
    bool aimed = true; // whether the action puts the pointer somewhere

    switch (control->action()) {
    case QVAction::MoveToCenter: target = frame.center(); break;
    case QVAction::Move:
        target = movedPoint(*control, location, display, displays);
        if (shouldRepeat)
            *shouldRepeat = true;
        break;
    case QVAction::MoveToEdgeOrCorner:
        if (display)
            target = edgeOrCornerPoint(control->moveToEdgeOrCornerPosition(), target, frame);
        break;
    case QVAction::MoveToOtherDisplay:
        if (const QVDisplay *other = screenAtRelativePosition(
                display, control->moveToOtherDisplayDirection(), control->moveToOtherDisplayLoop(), displays);
            display && other)
            target = otherDisplayPoint(*control, location, frame, other->frame);
        break;
    case QVAction::MoveToScreenSection:
        if (!m_screenSection)
            QVLog(QStringLiteral("the screen section overlay is not available"));
        else if (m_screenSection->isOverlayActive())
            m_screenSection->performOverlayPanelAction(); // the same hot key again confirms
        else
            m_screenSection->activateOverlayWithFrame(frame);
        aimed = false;
        break;
    default:
        QVLog(QStringLiteral("unknown action"));
        aimed = false;
        break;
    }

    // Where the pointer is may be a guess (Wayland): then it is put there even when the
    // guess says it is there already.
    if (aimed && (!(target == location) || m_displays.isMouseLocationApproximate()))
        QVPostMouseMovedEvent(m_pointer, true, target, displays);
    return true;
}

QVCustomControlRef QVActionEngine::controlMatchingEvent(const QVEvent *event) const
{
    // Asked for from outside: the event names its control instead of carrying a key.
    const bool named = event && !event->performedControl.isEmpty();
    for (const QVCustomControlRef &candidate : m_controls()) {
        if (named) {
            if (candidate->uniqueIdentifier() == event->performedControl)
                return candidate;
            continue;
        }
        const QVHotKeyRef hotKey = candidate->hotKey();
        if (hotKey && hotKey->matchesEvent(event))
            return candidate;
    }
    return nullptr;
}

QVPoint QVActionEngine::movedPoint(const QVCustomControlRepresentation &control, const QVPoint &location,
    const QVDisplay *display, const QVDisplayList &displays) const
{
    double delta = static_cast<double>(control.moveDelta());
    if (control.moveAccelerate() && m_repetitionCounter != 0)
        delta *= static_cast<double>(std::min(m_repetitionCounter, largestAccelerationFactor));
    delta = std::max(1.0, delta);
    // A diagonal step about as long as a straight one.
    const double diagonal = std::max(1.0, std::floor(std::sqrt(delta * delta * 0.5) + 0.5));

    QVPoint target = location;
    switch (control.moveDirection()) {
    case QVPosition::Top: target.y += delta; break;
    case QVPosition::TopRight:
        target.x += diagonal;
        target.y += diagonal;
        break;
    case QVPosition::Right: target.x += delta; break;
    case QVPosition::BottomRight:
        target.x += diagonal;
        target.y -= diagonal;
        break;
    case QVPosition::Bottom: target.y -= delta; break;
    case QVPosition::BottomLeft:
        target.x -= diagonal;
        target.y -= diagonal;
        break;
    case QVPosition::Left: target.x -= delta; break;
    case QVPosition::TopLeft:
        target.x -= diagonal;
        target.y += diagonal;
        break;
    default: break;
    }
    if (!display)
        return target;
    // Unconfined moves may cross onto a neighbour, never into the space between displays.
    if (!control.confinedToDisplay() && screenAtPosition(QVPosition::None, target, displays))
        return target;
    return QVPointConfinedToDisplayPixels(display->frame, target);
}

void QVActionEngine::click(bool rightButton)
{
    finishPendingClick(); // one button at a time, in the order the hot keys came
    if (!QVPostMouseButtonEvent(m_pointer, true, rightButton, true))
        return;
    // The button stays down a moment without blocking: key events that arrive
    // meanwhile (a modifier let go, say) are handled in their order.
    m_pendingClickIsRight = rightButton;
    m_clickTimer.performAfterDelay(clickHoldSeconds, [this] { finishPendingClick(); });
}

void QVActionEngine::finishPendingClick()
{
    if (!m_pendingClickIsRight)
        return;
    m_clickTimer.cancelPreviousPerformRequests();
    const bool rightButton = *std::exchange(m_pendingClickIsRight, std::nullopt);
    QVPostMouseButtonEvent(m_pointer, false, rightButton, true);
}
