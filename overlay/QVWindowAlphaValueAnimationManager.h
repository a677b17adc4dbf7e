#pragma once

#include "QVDelayedPerformer.h"

#include <functional>
#include <memory>

class QVFadingWindow;

// Fades one window in and out by stepping its alpha value on the main event loop.
// It can also let the window vanish on its own a while after it appeared (when the
// window has a reference window), vanish and then close it, or wait for the next
// input event before doing so. The window owns its manager; main thread only.
class QVWindowAlphaValueAnimationManager final
{
public:
    using PerformerFactory = std::function<std::unique_ptr<QVDelayedPerformer>()>;
    // Blocks for the given seconds; synchronous fades sleep between their steps.
    using Sleeper = std::function<void(double seconds)>;

    // Without a factory the calls run on Qt timers; without a sleeper the thread sleeps.
    explicit QVWindowAlphaValueAnimationManager(
        QVFadingWindow *window, const PerformerFactory &performerFactory = {}, Sleeper sleeper = {});
    ~QVWindowAlphaValueAnimationManager();
    QVWindowAlphaValueAnimationManager(const QVWindowAlphaValueAnimationManager &) = delete;
    QVWindowAlphaValueAnimationManager &operator=(const QVWindowAlphaValueAnimationManager &) = delete;

    // Shows the window at or fading in to the alpha value (above 0.99 means 1.0).
    // Unless regardless, only a window with a reference window appears, and it then
    // vanishes on its own after the vanish interval. False when nothing appeared.
    bool appearRegardless(bool regardless, bool fadeIn, double alphaValue, bool synchronously);
    bool appearWithReferenceWindowByFadingIn(bool fadeIn);
    void orderFrontWithAlpha(double alphaValue);
    // Brings the window to the front, from alpha 0 if it was hidden, and fades it in.
    bool orderFrontAndFadeInToAlphaValue(double alphaValue, bool synchronously);
    // Fades out to the alpha value (below 0.01 means 0.0). Unless regardless, only a
    // window with a reference window vanishes, and not while the reference window is
    // main or key, the application active and the pointer over the window: the vanish
    // is then tried again after another vanish interval. False when nothing vanished.
    bool vanishRegardless(bool regardless, bool fadeOut, double alphaValue, bool synchronously, bool hideMouse);
    void vanishWithReferenceWindow();
    // Fades the visible window out and closes it; it ignores the mouse meanwhile.
    void vanishAndClose();
    // Waits for the next input event anywhere in the application, at most 60 seconds,
    // without taking the event, then vanishes and closes.
    void vanishAndCloseAfterNextEvent();

    // False without a window or reference window; else tells whether the reference
    // window is main or key, and whether the pointer is over the window.
    bool shouldAnimateAlphaValueForMainOrKeyReferenceWindow(bool *mainOrKey, bool *hoveringMouse) const;

    QVFadingWindow *window() const { return m_window; }
    double minimumAlphaValue() const { return m_minimumAlphaValue; }
    double maximumAlphaValue() const { return m_maximumAlphaValue; }
    // Positive while fading in, negative while fading out.
    double alphaValueAnimationQuantum() const { return m_alphaValueAnimationQuantum; }
    bool isVanishingToClose() const { return m_isVanishingToClose; }
    bool didSetWindowToIgnoreMouseForVanishing() const { return m_didSetWindowToIgnoreMouseForVanishing; }

private:
    class NextEventWatcher;

    // One step of the fade; false once the fade has reached its bound.
    bool performNextAlphaValueAnimationStep();
    void performAsynchronousAlphaValueAnimationStep();
    void performAlphaValueAnimationWithQuantum(double quantum, bool synchronously);
    void startVanishingToClose();
    void stopVanishingToCloseAfterClosing(bool close);
    void cancelAlphaValueAnimationPerformRequests();
    void willAppear();
    void didAppear();
    void willVanish();
    void didVanish();

    QVFadingWindow *m_window; // not owned: the window owns this manager
    double m_minimumAlphaValue = 0.0;
    double m_maximumAlphaValue = 1.0;
    double m_alphaValueAnimationQuantum = 1.0;
    bool m_isVanishingToClose = false;
    bool m_didSetWindowToIgnoreMouseForVanishing = false;

    Sleeper m_sleeper;
    // Independent pending calls: cancelling one leaves the others alone.
    std::unique_ptr<QVDelayedPerformer> m_stepPerformer;
    std::unique_ptr<QVDelayedPerformer> m_vanishPerformer;
    std::unique_ptr<QVDelayedPerformer> m_startVanishingToClosePerformer;
    std::unique_ptr<QVDelayedPerformer> m_nextEventTimeoutPerformer;
    std::unique_ptr<NextEventWatcher> m_nextEventWatcher;
};
