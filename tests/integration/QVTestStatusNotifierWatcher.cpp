#include "QVTestStatusNotifierWatcher.h"

#include <QDBusError>

QVTestStatusNotifierWatcher::QVTestStatusNotifierWatcher(QDBusConnection connection)
    : m_connection(std::move(connection))
{
}

bool QVTestStatusNotifierWatcher::registerOnBus(QString *error)
{
    if (!m_connection.registerObject(QStringLiteral("/StatusNotifierWatcher"), this,
            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties | QDBusConnection::ExportAllSignals)
        || !m_connection.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"))) {
        *error = m_connection.lastError().message();
        return false;
    }
    return true;
}

void QVTestStatusNotifierWatcher::RegisterStatusNotifierItem(const QString &service)
{
    m_items.append(service);
    Q_EMIT StatusNotifierItemRegistered(service);
}

void QVTestStatusNotifierWatcher::RegisterStatusNotifierHost(const QString &service)
{
    Q_UNUSED(service);
    Q_EMIT StatusNotifierHostRegistered();
}
