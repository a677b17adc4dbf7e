#pragma once

class QVFadingWindow;

// Told about a fading window's appearing and vanishing; every call is optional.
// A delegate must not destroy the window from inside these calls (use deleteLater).
class QVFadingWindowDelegate
{
public:
    virtual ~QVFadingWindowDelegate() = default;

    virtual void windowWillAppear(QVFadingWindow *) { }
    virtual void windowDidAppear(QVFadingWindow *) { }
    virtual void windowWillVanish(QVFadingWindow *) { }
    virtual void windowDidVanish(QVFadingWindow *) { }
};
