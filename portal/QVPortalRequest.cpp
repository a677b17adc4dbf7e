#include "QVPortalRequest.h"

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QLoggingCategory>

namespace
{

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");
const QString responseSignal = QStringLiteral("Response");

QString nextToken()
{
    static quint64 counter = 0;
    return QStringLiteral("corvane_request_%1").arg(++counter);
}

} // namespace

QVPortalRequest::QVPortalRequest(const QDBusConnection &connection, QObject *parent)
    : QObject(parent)
    , m_connection(connection)
    , m_token(nextToken())
{
    m_timeout.setSingleShot(true);
    connect(&m_timeout, &QTimer::timeout, this, [this] {
        qWarning("Corvane: the desktop portal did not answer %s in time", qPrintable(m_path));
        finish(Failed, {});
    });
}

QString QVPortalRequest::senderPart(const QString &uniqueName)
{
    QString part = uniqueName;
    if (part.startsWith(QLatin1Char(':')))
        part.remove(0, 1);
    return part.replace(QLatin1Char('.'), QLatin1Char('_'));
}

QString QVPortalRequest::requestPath(const QString &uniqueName, const QString &token)
{
    return QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2").arg(senderPart(uniqueName), token);
}

void QVPortalRequest::send(const QDBusMessage &call, Callback callback, int timeoutMs)
{
    m_callback = std::move(callback);
    // Before the call: a quick desktop may answer before the method's reply arrives.
    subscribe(requestPath(m_connection.baseService(), m_token));
    m_timeout.start(timeoutMs);
    auto *watcher = new QDBusPendingCallWatcher(m_connection.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusObjectPath> reply = *watcher;
        if (reply.isError()) {
            qWarning("Corvane: the desktop portal refused the call: %s", qPrintable(reply.error().message()));
            finish(Failed, {});
            return;
        }
        // Portals older than the handle_token convention answer at a path of their own.
        const QString path = reply.value().path();
        if (!m_finished && path != m_path) {
            unsubscribe();
            subscribe(path);
        }
    });
}

bool QVPortalRequest::subscribe(const QString &path)
{
    m_path = path;
    return m_connection.connect(
        portalService, m_path, requestInterface, responseSignal, this, SLOT(onResponse(uint, QVariantMap)));
}

void QVPortalRequest::unsubscribe()
{
    m_connection.disconnect(
        portalService, m_path, requestInterface, responseSignal, this, SLOT(onResponse(uint, QVariantMap)));
}

void QVPortalRequest::onResponse(uint code, const QVariantMap &results)
{
    finish(code, results);
}

void QVPortalRequest::finish(uint code, const QVariantMap &results)
{
    if (m_finished)
        return;
    m_finished = true;
    m_timeout.stop();
    unsubscribe();
    if (m_callback)
        m_callback(code, results);
    deleteLater();
}
