#include "QVPlatformOpening.h"

#include "QVDesktopInventory.h"
#include "QVGlobalShortcutsSession.h"
#include "QVLog.h"
#include "QVPortalHotKeyService.h"
#include "QVWaylandPlatform.h"
#include "QVX11Connection.h"
#include "QVX11Platform.h"

#include <QCryptographicHash>
#include <QDBusConnection>
#include <QFileInfo>

namespace
{

// The same for a settings file from run to run: the desktop files the bindings
// under it, and a new name at each start would pile them up.
QString shortcutSessionToken(const QString &settingsPath)
{
    const QString canonical = QFileInfo(settingsPath).absoluteFilePath();
    const QByteArray digest = QCryptographicHash::hash(canonical.toUtf8(), QCryptographicHash::Sha1).toHex();
    return QStringLiteral("corvane_") + QString::fromLatin1(digest.left(12));
}

} // namespace

QVPlatformOpening::QVPlatformOpening(QVPlatformChoice::Kind kind)
    : m_kind(kind)
{
}

QVPlatformOpening::~QVPlatformOpening() = default;

std::unique_ptr<QVPlatformOpening> QVPlatformOpening::begin(const QString &requested, QString *error, QString *notice)
{
    const QVPlatformChoice::Session session = QVPlatformChoice::currentSession();
    const QVPlatformChoice choice = QVPlatformChoice::choose(requested, session);
    switch (choice.kind) {
    case QVPlatformChoice::Kind::None: *error = choice.reason; return nullptr;
    case QVPlatformChoice::Kind::X11:
        if (!choice.reason.isEmpty())
            *notice = choice.reason;
        return beginX11(error);
    case QVPlatformChoice::Kind::Wayland: break;
    }
    QString waylandError;
    if (std::unique_ptr<QVPlatformOpening> opening = beginWayland(&waylandError))
        return opening;
    // Asked for by name, Wayland it is; the session's own choice may fall back.
    if (!requested.isEmpty() || session.display.isEmpty()) {
        *error = waylandError;
        return nullptr;
    }
    *notice
        = QStringLiteral("%1; driving X11 through XWayland instead, which reaches X11 windows only").arg(waylandError);
    return beginX11(error);
}

// The connection that proves the display reachable is kept and becomes Corvane's own: a
// probe closed before Qt connects can be a server's last client, and a server that resets
// as its last client leaves may then be mid-reset when Qt connects.
std::unique_ptr<QVPlatformOpening> QVPlatformOpening::beginX11(QString *error)
{
    std::unique_ptr<QVX11Connection> connection = QVX11Connection::open(qgetenv("DISPLAY"), nullptr);
    if (!connection) {
        *error = QStringLiteral("cannot open X11 display \"%1\". Corvane needs a running X server that this user "
                                "may connect to")
                     .arg(qEnvironmentVariable("DISPLAY"));
        return nullptr;
    }
    std::unique_ptr<QVPlatformOpening> opening(new QVPlatformOpening(QVPlatformChoice::Kind::X11));
    opening->m_x11 = std::move(connection);
    return opening;
}

std::unique_ptr<QVPlatformOpening> QVPlatformOpening::beginWayland(QString *error)
{
    std::unique_ptr<QVWaylandPlatform> platform = QVWaylandPlatform::open(error);
    if (!platform)
        return nullptr;
    std::unique_ptr<QVPlatformOpening> opening(new QVPlatformOpening(QVPlatformChoice::Kind::Wayland));
    opening->m_wayland = std::move(platform);
    return opening;
}

QByteArray QVPlatformOpening::qtPlatformName() const
{
    return m_kind == QVPlatformChoice::Kind::Wayland ? QByteArrayLiteral("wayland") : QByteArrayLiteral("xcb");
}

QString QVPlatformOpening::displayName() const
{
    return m_kind == QVPlatformChoice::Kind::Wayland
        ? QStringLiteral("Wayland display \"%1\"").arg(qEnvironmentVariable("WAYLAND_DISPLAY"))
        : QStringLiteral("X11 display \"%1\"").arg(qEnvironmentVariable("DISPLAY"));
}

std::unique_ptr<QVPlatform> QVPlatformOpening::finish(const QString &settingsPath, QString *error)
{
    if (m_wayland) {
        m_wayland->startWatching();
        attachDesktopHotKeys(*m_wayland, settingsPath);
        return std::move(m_wayland);
    }
    if (!m_x11) {
        *error = QStringLiteral("the window system was opened once already");
        return nullptr;
    }
    return QVX11Platform::open(std::move(m_x11), error);
}

void QVPlatformOpening::attachDesktopHotKeys(QVWaylandPlatform &platform, const QString &settingsPath)
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    const QVWaylandBackendPlan plan = QVWaylandBackendPlan::forDesktop(QVDesktopInventory::shortcutFacts(bus));
    QVLog(QStringLiteral("hot keys: %1").arg(plan.hotKeysReason));
    if (plan.hotKeys != QVWaylandBackendPlan::HotKeys::Portal)
        return;
    auto service = std::make_unique<QVPortalHotKeyService>(
        std::make_unique<QVGlobalShortcutsSession>(bus, shortcutSessionToken(settingsPath)));
    service->setEventHandler([&platform](const QVEventRef &event) { platform.deliverHotKeyEvent(event); });
    platform.setHotKeyService(std::move(service));
}
