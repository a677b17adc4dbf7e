#include "QVDBusService.h"

#include "QVLog.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>

namespace
{

const QString serviceName = QStringLiteral("org.corvane.Corvane");
const QString objectPath = QStringLiteral("/org/corvane/Corvane");
const QString noSuchControl = QStringLiteral("org.corvane.Corvane.Error.NoSuchControl");

} // namespace

QVDBusService::QVDBusService(PerformHandler perform, ListHandler list, QObject *parent)
    : QObject(parent)
    , m_perform(std::move(perform))
    , m_list(std::move(list))
{
    qDBusRegisterMetaType<QList<QStringList>>();
}

QVDBusService::~QVDBusService()
{
    if (!m_registered)
        return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.unregisterObject(objectPath);
    bus.unregisterService(serviceName);
}

bool QVDBusService::registerOnSessionBus()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        QVLog(QStringLiteral("no session bus: org.corvane.Corvane is not offered"));
        return false;
    }
    if (!bus.registerObject(objectPath, this, QDBusConnection::ExportScriptableSlots))
        return false;
    // Corvanes on other settings files keep the name of the first; this one is not on offer.
    if (!bus.registerService(serviceName)) {
        QVLog(QStringLiteral("another program owns %1 on the session bus: this Corvane is not offered there")
                  .arg(serviceName));
        bus.unregisterObject(objectPath);
        return false;
    }
    m_registered = true;
    return true;
}

void QVDBusService::Perform(const QString &name)
{
    performOrReply(name, false);
}

void QVDBusService::Release(const QString &name)
{
    performOrReply(name, true);
}

QList<QStringList> QVDBusService::ListControls()
{
    return m_list ? m_list() : QList<QStringList>();
}

void QVDBusService::performOrReply(const QString &name, bool release)
{
    const QString problem = m_perform ? m_perform(name, release) : QStringLiteral("nothing to perform");
    if (!problem.isEmpty() && calledFromDBus())
        sendErrorReply(noSuchControl, problem);
}
