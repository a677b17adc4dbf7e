#pragma once

#include <QString>

// Which window system Corvane drives, from the session it runs in and the
// command line's --platform: the X11 back end for an X11 session, the Wayland one
// for a Wayland session, whichever is asked for by name.
struct QVPlatformChoice final {
    enum class Kind { X11, Wayland, None };

    Kind kind = Kind::None;
    QString reason; // why None, or what to know about the choice

    struct Session {
        QString display; // $DISPLAY
        QString waylandDisplay; // $WAYLAND_DISPLAY
        QString sessionType; // $XDG_SESSION_TYPE
    };
    static Session currentSession();
    // requested: "x11", "wayland" or empty for the session's own.
    static QVPlatformChoice choose(const QString &requested, const Session &session);
    static bool isKnownName(const QString &requested);
};
