#pragma once

#include <QPointF>
#include <QRectF>

class QVFadingWindowDelegate;

// What the fade animation needs of a window. It stays free of widgets so that the
// fade logic runs and is tested without a display.
class QVFadingWindow
{
public:
    virtual ~QVFadingWindow() = default;

    // Opacity from 0.0 (invisible) to 1.0 (opaque).
    virtual double alphaValue() const = 0;
    virtual void setAlphaValue(double alphaValue) = 0;
    // Whether the window is shown (whatever its alpha).
    virtual bool isWindowVisible() const = 0;
    // Shows and raises the window; it also takes the keyboard if it can.
    virtual void orderFront() = 0;
    // Closes the window without destroying it: it is shown again later.
    virtual void closeWindow() = 0;
    virtual bool ignoresMouseEvents() const = 0;
    virtual void setIgnoresMouseEvents(bool ignores) = 0;
    // The window's frame and the pointer, both in the same top-down coordinates.
    virtual QRectF windowFrame() const = 0;
    virtual QPointF mouseLocation() const = 0;
    virtual bool isApplicationActive() const = 0;
    // Nothing by default: no call for it on X11 without more machinery.
    virtual void hideMouseUntilMoved() { }

    // Seconds from appearing to vanishing on its own: the setting "Window Vanish
    // Interval", where a value below 1 or none means 5.
    virtual double vanishInterval() const;
    // Seconds between two fade steps.
    virtual double alphaValueAnimationStepInterval() const { return 0.02; }
    // Alpha change per fade step (the direction sets its sign).
    virtual double alphaValueAnimationQuantum() const { return 0.05; }

    // A window whose state governs automatic vanishing; none by default, and then
    // the window only appears or vanishes when asked to regardless.
    virtual bool hasAlphaValueAnimationReferenceWindow() const { return false; }
    virtual bool isAlphaValueAnimationReferenceWindowMainOrKey() const { return false; }

    // Hooks for subclasses, run before the delegate hears of the same moment.
    virtual void willAppear() { }
    virtual void didAppear() { }
    virtual void willVanish() { }
    virtual void didVanish() { }
    virtual QVFadingWindowDelegate *fadingDelegate() const { return nullptr; }
};
