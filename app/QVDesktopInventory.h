#pragma once

#include "QVWaylandBackendPlan.h"

#include <QDBusConnection>

// Learns what the running Wayland desktop offers Corvane: its compositor's globals
// (on a connection of its own), the desktop portal's interfaces with their
// versions, and GNOME's version where GNOME runs.
class QVDesktopInventory final
{
public:
    // error: set when the compositor cannot be reached (the globals stay empty).
    static QVWaylandDesktopFacts gather(const QDBusConnection &bus, QString *error);
    // What decides the hot keys alone: the desktop, and the portal only where it can matter.
    static QVWaylandDesktopFacts shortcutFacts(const QDBusConnection &bus);
    static QSet<QByteArray> compositorGlobals(QString *error);
    // The interfaces of org.freedesktop.portal.Desktop that answer, by short name.
    static QMap<QString, uint> portalVersions(const QDBusConnection &bus);
    static QVersionNumber gnomeShellVersion(const QDBusConnection &bus);

private:
    static QVWaylandDesktopFacts desktopFacts(const QDBusConnection &bus, bool alwaysAskPortal);
};
