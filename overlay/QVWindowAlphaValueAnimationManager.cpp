#include "QVWindowAlphaValueAnimationManager.h"

#include "QVFadingWindow.h"
#include "QVFadingWindowDelegate.h"
#include "QVTimerDelayedPerformer.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>

#include <chrono>
#include <thread>

namespace
{

// Lets the last step land exactly on the bound instead of just short of it.
constexpr double boundMargin = 0.01;
constexpr double vanishAndCloseDelay = 0.01;
constexpr double nextEventTimeout = 60.0;

bool isInputEvent(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::NonClientAreaMouseButtonPress:
    case QEvent::NonClientAreaMouseButtonRelease:
    case QEvent::NonClientAreaMouseMove:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Wheel:
    case QEvent::TabletPress:
    case QEvent::TabletRelease:
    case QEvent::TouchBegin: return true;
    default: return false;
    }
}

} // namespace

// Watches the application's events without taking any, until the first input event.
class QVWindowAlphaValueAnimationManager::NextEventWatcher final : public QObject
{
public:
    explicit NextEventWatcher(std::function<void()> onEvent)
        : m_onEvent(std::move(onEvent))
    {
    }
    ~NextEventWatcher() override { stop(); }

    bool isWatching() const { return m_watching; }
    void start()
    {
        QCoreApplication::instance()->installEventFilter(this);
        m_watching = true;
    }
    void stop()
    {
        if (m_watching && QCoreApplication::instance())
            QCoreApplication::instance()->removeEventFilter(this);
        m_watching = false;
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (m_watching && isInputEvent(event->type())) {
            stop();
            m_onEvent();
        }
        return false; // the event goes on to its receiver
    }

private:
    std::function<void()> m_onEvent;
    bool m_watching = false;
};

QVWindowAlphaValueAnimationManager::QVWindowAlphaValueAnimationManager(
    QVFadingWindow *window, const PerformerFactory &performerFactory, Sleeper sleeper)
    : m_window(window)
    , m_sleeper(std::move(sleeper))
{
    const PerformerFactory factory = performerFactory ? performerFactory : [] {
        return std::unique_ptr<QVDelayedPerformer>(std::make_unique<QVTimerDelayedPerformer>());
    };
    m_stepPerformer = factory();
    m_vanishPerformer = factory();
    m_startVanishingToClosePerformer = factory();
    m_nextEventTimeoutPerformer = factory();
    if (!m_sleeper)
        m_sleeper = [](double seconds) { std::this_thread::sleep_for(std::chrono::duration<double>(seconds)); };
}

QVWindowAlphaValueAnimationManager::~QVWindowAlphaValueAnimationManager() = default;

bool QVWindowAlphaValueAnimationManager::performNextAlphaValueAnimationStep()
{
    if (!m_window)
        return false;
    const double alphaValue = m_window->alphaValue() + m_alphaValueAnimationQuantum;
    if (m_alphaValueAnimationQuantum > 0.0) {
        if (alphaValue > m_maximumAlphaValue - boundMargin) {
            m_window->setAlphaValue(m_maximumAlphaValue);
            didAppear();
            return false;
        }
    } else if (m_minimumAlphaValue + boundMargin > alphaValue) {
        m_window->setAlphaValue(m_minimumAlphaValue);
        didVanish();
        return false;
    }
    m_window->setAlphaValue(alphaValue);
    return true;
}

void QVWindowAlphaValueAnimationManager::performAsynchronousAlphaValueAnimationStep()
{
    if (performNextAlphaValueAnimationStep())
        m_stepPerformer->performAfterDelay(
            m_window->alphaValueAnimationStepInterval(), [this] { performAsynchronousAlphaValueAnimationStep(); });
}

void QVWindowAlphaValueAnimationManager::performAlphaValueAnimationWithQuantum(double quantum, bool synchronously)
{
    m_alphaValueAnimationQuantum = quantum;
    if (!synchronously) {
        performAsynchronousAlphaValueAnimationStep();
        return;
    }
    while (performNextAlphaValueAnimationStep())
        m_sleeper(m_window->alphaValueAnimationStepInterval());
}

void QVWindowAlphaValueAnimationManager::cancelAlphaValueAnimationPerformRequests()
{
    m_startVanishingToClosePerformer->cancelPreviousPerformRequests();
    m_vanishPerformer->cancelPreviousPerformRequests();
    m_stepPerformer->cancelPreviousPerformRequests();
}

bool QVWindowAlphaValueAnimationManager::shouldAnimateAlphaValueForMainOrKeyReferenceWindow(
    bool *mainOrKey, bool *hoveringMouse) const
{
    if (!m_window || !m_window->hasAlphaValueAnimationReferenceWindow())
        return false;
    if (mainOrKey)
        *mainOrKey = m_window->isAlphaValueAnimationReferenceWindowMainOrKey();
    if (hoveringMouse) {
        // Half open, so that a pointer on the edge shared with a neighbour is over one window only.
        const QRectF frame = m_window->windowFrame();
        const QPointF mouse = m_window->mouseLocation();
        *hoveringMouse = mouse.x() >= frame.left() && mouse.x() < frame.right() && mouse.y() >= frame.top()
            && mouse.y() < frame.bottom();
    }
    return true;
}

bool QVWindowAlphaValueAnimationManager::appearRegardless(
    bool regardless, bool fadeIn, double alphaValue, bool synchronously)
{
    stopVanishingToCloseAfterClosing(false);
    cancelAlphaValueAnimationPerformRequests();
    if (!m_window)
        return false;
    if (!regardless && !shouldAnimateAlphaValueForMainOrKeyReferenceWindow(nullptr, nullptr))
        return false;
    m_maximumAlphaValue = alphaValue > 0.99 ? 1.0 : alphaValue;
    willAppear();
    if (fadeIn) {
        performAlphaValueAnimationWithQuantum(m_window->alphaValueAnimationQuantum(), synchronously);
    } else {
        m_window->setAlphaValue(m_maximumAlphaValue);
        didAppear();
    }
    if (!regardless)
        m_vanishPerformer->performAfterDelay(m_window->vanishInterval(), [this] { vanishWithReferenceWindow(); });
    return true;
}

bool QVWindowAlphaValueAnimationManager::appearWithReferenceWindowByFadingIn(bool fadeIn)
{
    return appearRegardless(false, fadeIn, 1.0, false);
}

void QVWindowAlphaValueAnimationManager::orderFrontWithAlpha(double alphaValue)
{
    stopVanishingToCloseAfterClosing(false);
    cancelAlphaValueAnimationPerformRequests();
    if (!m_window)
        return;
    m_window->setAlphaValue(alphaValue);
    m_window->orderFront();
}

bool QVWindowAlphaValueAnimationManager::orderFrontAndFadeInToAlphaValue(double alphaValue, bool synchronously)
{
    stopVanishingToCloseAfterClosing(false);
    cancelAlphaValueAnimationPerformRequests();
    if (!m_window)
        return false;
    if (!m_window->isWindowVisible())
        m_window->setAlphaValue(0.0);
    m_window->orderFront();
    return appearRegardless(true, true, alphaValue, synchronously);
}

bool QVWindowAlphaValueAnimationManager::vanishRegardless(
    bool regardless, bool fadeOut, double alphaValue, bool synchronously, bool hideMouse)
{
    cancelAlphaValueAnimationPerformRequests();
    if (!m_window)
        return false;
    bool mainOrKey = false;
    bool hovering = false;
    if (!regardless && !shouldAnimateAlphaValueForMainOrKeyReferenceWindow(&mainOrKey, &hovering))
        return false;
    if (mainOrKey && m_window->isApplicationActive()) {
        if (hovering && !regardless) {
            // The window stays while the user points at it; try again later.
            m_vanishPerformer->performAfterDelay(m_window->vanishInterval(), [this] { vanishWithReferenceWindow(); });
            return false;
        }
        if (hideMouse)
            m_window->hideMouseUntilMoved();
    }
    m_minimumAlphaValue = alphaValue >= 0.01 ? alphaValue : 0.0;
    willVanish();
    if (fadeOut) {
        performAlphaValueAnimationWithQuantum(-m_window->alphaValueAnimationQuantum(), synchronously);
    } else {
        m_window->setAlphaValue(m_minimumAlphaValue);
        didVanish();
    }
    return true;
}

void QVWindowAlphaValueAnimationManager::vanishWithReferenceWindow()
{
    vanishRegardless(false, true, 0.0, false, true);
}

void QVWindowAlphaValueAnimationManager::vanishAndClose()
{
    if (!m_window || !m_window->isWindowVisible() || m_isVanishingToClose)
        return;
    m_isVanishingToClose = true;
    // A closing window must not catch clicks meant for what lies beneath it.
    if (!m_window->ignoresMouseEvents()) {
        m_window->setIgnoresMouseEvents(true);
        m_didSetWindowToIgnoreMouseForVanishing = true;
    }
    m_startVanishingToClosePerformer->performAfterDelay(vanishAndCloseDelay, [this] { startVanishingToClose(); });
}

void QVWindowAlphaValueAnimationManager::startVanishingToClose()
{
    if (m_isVanishingToClose)
        vanishRegardless(true, true, 0.0, false, false);
}

void QVWindowAlphaValueAnimationManager::stopVanishingToCloseAfterClosing(bool close)
{
    if (m_isVanishingToClose) {
        if (close && m_window)
            m_window->closeWindow();
        m_isVanishingToClose = false;
    }
    if (m_didSetWindowToIgnoreMouseForVanishing) {
        if (m_window)
            m_window->setIgnoresMouseEvents(false);
        m_didSetWindowToIgnoreMouseForVanishing = false;
    }
}

void QVWindowAlphaValueAnimationManager::vanishAndCloseAfterNextEvent()
{
    // Without an application there is no event to wait for.
    if (!QCoreApplication::instance()) {
        vanishAndClose();
        return;
    }
    if (!m_nextEventWatcher) {
        m_nextEventWatcher = std::make_unique<NextEventWatcher>([this] {
            m_nextEventTimeoutPerformer->cancelPreviousPerformRequests();
            vanishAndClose();
        });
    }
    if (m_nextEventWatcher->isWatching())
        return;
    m_nextEventWatcher->start();
    m_nextEventTimeoutPerformer->performAfterDelay(nextEventTimeout, [this] {
        m_nextEventWatcher->stop();
        vanishAndClose();
    });
}

void QVWindowAlphaValueAnimationManager::willAppear()
{
    m_window->willAppear();
    if (QVFadingWindowDelegate *delegate = m_window->fadingDelegate())
        delegate->windowWillAppear(m_window);
}

void QVWindowAlphaValueAnimationManager::didAppear()
{
    m_window->didAppear();
    if (QVFadingWindowDelegate *delegate = m_window->fadingDelegate())
        delegate->windowDidAppear(m_window);
}

void QVWindowAlphaValueAnimationManager::willVanish()
{
    m_window->willVanish();
    if (QVFadingWindowDelegate *delegate = m_window->fadingDelegate())
        delegate->windowWillVanish(m_window);
}

void QVWindowAlphaValueAnimationManager::didVanish()
{
    m_window->didVanish();
    if (QVFadingWindowDelegate *delegate = m_window->fadingDelegate())
        delegate->windowDidVanish(m_window);
    stopVanishingToCloseAfterClosing(true);
}
