#include "QVDesktopInventory.h"

#include "QVWaylandConnection.h"

#include <QDBusMessage>
#include <QDBusVariant>

namespace
{

constexpr int callTimeoutMilliseconds = 3000; // a portal that does not answer by then counts as missing

QVariant property(const QDBusConnection &bus, const QString &service, const QString &path, const QString &interface,
    const QString &name)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        service, path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call << interface << name;
    const QDBusMessage reply = bus.call(call, QDBus::Block, callTimeoutMilliseconds);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return {};
    return reply.arguments().constFirst().value<QDBusVariant>().variant();
}

} // namespace

QVWaylandDesktopFacts QVDesktopInventory::gather(const QDBusConnection &bus, QString *error)
{
    QVWaylandDesktopFacts facts = desktopFacts(bus, true);
    facts.globals = compositorGlobals(error);
    return facts;
}

QVWaylandDesktopFacts QVDesktopInventory::shortcutFacts(const QDBusConnection &bus)
{
    return desktopFacts(bus, false);
}

QVWaylandDesktopFacts QVDesktopInventory::desktopFacts(const QDBusConnection &bus, bool alwaysAskPortal)
{
    QVWaylandDesktopFacts facts;
    facts.desktops = QVWaylandDesktopFacts::desktopsFromEnvironment(qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
    // The portal may have to be started to answer: not asked where its answer changes nothing.
    const bool ask = alwaysAskPortal || QVWaylandBackendPlan::desktopFiresPortalShortcuts(facts);
    if (ask && bus.isConnected()) {
        facts.portalVersions = portalVersions(bus);
        if (facts.desktops.contains(QLatin1String("GNOME"), Qt::CaseInsensitive))
            facts.desktopVersion = gnomeShellVersion(bus);
    }
    return facts;
}

QSet<QByteArray> QVDesktopInventory::compositorGlobals(QString *error)
{
    QSet<QByteArray> globals;
    std::unique_ptr<QVWaylandConnection> connection = QVWaylandConnection::open(QString(), error);
    if (!connection)
        return globals;
    connection->setGlobalListeners(
        [&globals](const QVWaylandConnection::Global &global) { globals.insert(global.interface); }, nullptr);
    if (!connection->roundtrip() && error)
        *error = QStringLiteral("the Wayland compositor closed the connection");
    return globals;
}

QMap<QString, uint> QVDesktopInventory::portalVersions(const QDBusConnection &bus)
{
    QMap<QString, uint> versions;
    const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
    const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
    for (const QString &name :
        { QStringLiteral("GlobalShortcuts"), QStringLiteral("RemoteDesktop"), QStringLiteral("ScreenCast") }) {
        const QVariant version
            = property(bus, service, path, QStringLiteral("org.freedesktop.portal.") + name, QStringLiteral("version"));
        if (version.isValid())
            versions.insert(name, version.toUInt());
    }
    const QVariant registry = property(
        bus, service, path, QStringLiteral("org.freedesktop.host.portal.Registry"), QStringLiteral("version"));
    if (registry.isValid())
        versions.insert(QStringLiteral("Registry"), registry.toUInt());
    return versions;
}

QVersionNumber QVDesktopInventory::gnomeShellVersion(const QDBusConnection &bus)
{
    const QVariant version = property(bus, QStringLiteral("org.gnome.Shell"), QStringLiteral("/org/gnome/Shell"),
        QStringLiteral("org.gnome.Shell"), QStringLiteral("ShellVersion"));
    return QVersionNumber::fromString(version.toString());
}
