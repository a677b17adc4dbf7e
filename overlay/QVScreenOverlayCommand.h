#pragma once

#include <QtGlobal>

struct QVEvent;

// What a key pressed while the screen-section overlay is up asks for.
struct QVScreenOverlayCommand final {
    enum Kind {
        Ignore, // keys that type nothing: nothing happens, the overlay stays
        OpenPreferences, // ","
        Perform, // Return, space: move to the section's centre and close
        NextDisplay, // Tab: the same steps on the next display to the right
        RemoveLastStep, // Backspace, Delete
        AddStep, // arrows and h j k l: keep one half
        Close, // anything else: close without moving
    };

    Kind kind = Ignore;
    qint64 position = 0; // the half to keep, for AddStep

    static QVScreenOverlayCommand forKeyDown(const QVEvent &event);

    friend bool operator==(const QVScreenOverlayCommand &, const QVScreenOverlayCommand &) = default;
};
