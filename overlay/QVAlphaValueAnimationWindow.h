#pragma once

#include "QVFadingWindow.h"
#include "QVWindowAlphaValueAnimationManager.h"

#include <QWidget>

// A top-level window that appears and vanishes by fading its opacity. Closing
// hides it without destroying it, so it can be shown again. Subclasses tune the
// timing by overriding vanishInterval(), alphaValueAnimationStepInterval() and
// alphaValueAnimationQuantum(), and hook in with willAppear() and friends.
class QVAlphaValueAnimationWindow : public QWidget, public QVFadingWindow
{
    Q_OBJECT

public:
    explicit QVAlphaValueAnimationWindow(QWidget *parent = nullptr, Qt::WindowFlags flags = {});
    ~QVAlphaValueAnimationWindow() override;

    QVWindowAlphaValueAnimationManager *windowAlphaValueAnimationManager() { return &m_manager; }

    bool appearRegardless(bool regardless, bool fadeIn, double alphaValue, bool synchronously);
    bool appearWithReferenceWindowByFadingIn(bool fadeIn);
    void orderFrontWithAlpha(double alphaValue);
    bool orderFrontAndFadeInToAlphaValue(double alphaValue, bool synchronously);
    bool vanishRegardless(bool regardless, bool fadeOut, double alphaValue, bool synchronously, bool hideMouse);
    void vanishWithReferenceWindow();
    void vanishAndClose();
    void vanishAndCloseAfterNextEvent();

    // The window whose state governs automatic vanishing; none by default.
    virtual QWidget *alphaValueAnimationReferenceWindow() const { return nullptr; }
    // Whether bringing the window to the front also gives it the keyboard.
    virtual bool canBecomeKeyWindow() const;

    void setFadingDelegate(QVFadingWindowDelegate *delegate) { m_delegate = delegate; }
    QVFadingWindowDelegate *fadingDelegate() const override { return m_delegate; }

    double alphaValue() const override;
    void setAlphaValue(double alphaValue) override;
    bool isWindowVisible() const override;
    void orderFront() override;
    void closeWindow() override;
    bool ignoresMouseEvents() const override;
    void setIgnoresMouseEvents(bool ignores) override;
    QRectF windowFrame() const override;
    QPointF mouseLocation() const override;
    bool isApplicationActive() const override;
    bool hasAlphaValueAnimationReferenceWindow() const override;
    bool isAlphaValueAnimationReferenceWindowMainOrKey() const override;

private:
    QVFadingWindowDelegate *m_delegate = nullptr;
    // Qt keeps the opacity in steps of 1/255 (truncated): the fade steps from the exact value.
    double m_alphaValue = 1.0;
    // Last member: destroyed first, so no fade step outlives the window.
    QVWindowAlphaValueAnimationManager m_manager;
};
