#include "QVAlphaValueAnimationWindow.h"

#include "QVNativeWindowSystem.h"

#include <QCursor>
#include <QGuiApplication>

#include <chrono>
#include <thread>

QVAlphaValueAnimationWindow::QVAlphaValueAnimationWindow(QWidget *parent, Qt::WindowFlags flags)
    : QWidget(parent, flags | Qt::Window)
    , m_manager(this, {}, [](double seconds) {
        // Nothing else runs during a synchronous fade: push each opacity change to
        // the window system before sleeping, or only the last one would show.
        QGuiApplication::sync();
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    })
{
    // The window is shown again after closing.
    setAttribute(Qt::WA_DeleteOnClose, false);
}

QVAlphaValueAnimationWindow::~QVAlphaValueAnimationWindow() = default;

bool QVAlphaValueAnimationWindow::appearRegardless(bool regardless, bool fadeIn, double alphaValue, bool synchronously)
{
    return m_manager.appearRegardless(regardless, fadeIn, alphaValue, synchronously);
}

bool QVAlphaValueAnimationWindow::appearWithReferenceWindowByFadingIn(bool fadeIn)
{
    return m_manager.appearWithReferenceWindowByFadingIn(fadeIn);
}

void QVAlphaValueAnimationWindow::orderFrontWithAlpha(double alphaValue)
{
    m_manager.orderFrontWithAlpha(alphaValue);
}

bool QVAlphaValueAnimationWindow::orderFrontAndFadeInToAlphaValue(double alphaValue, bool synchronously)
{
    return m_manager.orderFrontAndFadeInToAlphaValue(alphaValue, synchronously);
}

bool QVAlphaValueAnimationWindow::vanishRegardless(
    bool regardless, bool fadeOut, double alphaValue, bool synchronously, bool hideMouse)
{
    return m_manager.vanishRegardless(regardless, fadeOut, alphaValue, synchronously, hideMouse);
}

void QVAlphaValueAnimationWindow::vanishWithReferenceWindow()
{
    m_manager.vanishWithReferenceWindow();
}

void QVAlphaValueAnimationWindow::vanishAndClose()
{
    m_manager.vanishAndClose();
}

void QVAlphaValueAnimationWindow::vanishAndCloseAfterNextEvent()
{
    m_manager.vanishAndCloseAfterNextEvent();
}

bool QVAlphaValueAnimationWindow::canBecomeKeyWindow() const
{
    return !windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus) && !testAttribute(Qt::WA_ShowWithoutActivating);
}

double QVAlphaValueAnimationWindow::alphaValue() const
{
    return m_alphaValue;
}

void QVAlphaValueAnimationWindow::setAlphaValue(double alphaValue)
{
    m_alphaValue = alphaValue;
    setWindowOpacity(alphaValue);
    // Without this a fade would stall at its first step until something else happens.
    QVFlushWindowSystem();
}

bool QVAlphaValueAnimationWindow::isWindowVisible() const
{
    return isVisible();
}

void QVAlphaValueAnimationWindow::orderFront()
{
    show();
    raise();
    if (canBecomeKeyWindow())
        activateWindow();
}

void QVAlphaValueAnimationWindow::closeWindow()
{
    close();
}

bool QVAlphaValueAnimationWindow::ignoresMouseEvents() const
{
    return testAttribute(Qt::WA_TransparentForMouseEvents);
}

void QVAlphaValueAnimationWindow::setIgnoresMouseEvents(bool ignores)
{
    setAttribute(Qt::WA_TransparentForMouseEvents, ignores);
}

QRectF QVAlphaValueAnimationWindow::windowFrame() const
{
    return frameGeometry();
}

QPointF QVAlphaValueAnimationWindow::mouseLocation() const
{
    return QCursor::pos();
}

bool QVAlphaValueAnimationWindow::isApplicationActive() const
{
    return QGuiApplication::applicationState() == Qt::ApplicationActive;
}

bool QVAlphaValueAnimationWindow::hasAlphaValueAnimationReferenceWindow() const
{
    return alphaValueAnimationReferenceWindow() != nullptr;
}

bool QVAlphaValueAnimationWindow::isAlphaValueAnimationReferenceWindowMainOrKey() const
{
    const QWidget *reference = alphaValueAnimationReferenceWindow();
    return reference && reference->isActiveWindow();
}
