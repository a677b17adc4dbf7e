#include "QVPlatformChoice.h"

#include <QtGlobal>

namespace
{

QVPlatformChoice none(const QString &reason)
{
    return { QVPlatformChoice::Kind::None, reason };
}

} // namespace

QVPlatformChoice::Session QVPlatformChoice::currentSession()
{
    return { qEnvironmentVariable("DISPLAY"), qEnvironmentVariable("WAYLAND_DISPLAY"),
        qEnvironmentVariable("XDG_SESSION_TYPE") };
}

bool QVPlatformChoice::isKnownName(const QString &requested)
{
    return requested.isEmpty() || requested == QLatin1String("x11") || requested == QLatin1String("wayland");
}

QVPlatformChoice QVPlatformChoice::choose(const QString &requested, const Session &session)
{
    if (requested == QLatin1String("x11"))
        return session.display.isEmpty() ? none(QStringLiteral("X11 was asked for, but $DISPLAY is not set"))
                                         : QVPlatformChoice { Kind::X11, {} };
    if (requested == QLatin1String("wayland"))
        return session.waylandDisplay.isEmpty()
            ? none(QStringLiteral("Wayland was asked for, but $WAYLAND_DISPLAY is not set"))
            : QVPlatformChoice { Kind::Wayland, {} };
    // A Wayland session may offer X11 too (XWayland), which reaches only X11 windows.
    const bool wayland = !session.waylandDisplay.isEmpty() || session.sessionType == QLatin1String("wayland");
    if (wayland && !session.waylandDisplay.isEmpty())
        return { Kind::Wayland, {} };
    if (!session.display.isEmpty())
        return { Kind::X11,
            wayland ? QStringLiteral("the Wayland session names no display ($WAYLAND_DISPLAY): using X11")
                    : QString() };
    return none(QStringLiteral("no display: neither $WAYLAND_DISPLAY nor $DISPLAY is set"));
}
