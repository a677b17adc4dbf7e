#include "QVPortalShortcut.h"

#include <QDBusMetaType>

QVPortalShortcut QVPortalShortcut::make(const QString &id, const QString &description, const QString &preferredTrigger)
{
    QVPortalShortcut shortcut;
    shortcut.id = id;
    shortcut.properties.insert(QStringLiteral("description"), description);
    if (!preferredTrigger.isEmpty())
        shortcut.properties.insert(QStringLiteral("preferred_trigger"), preferredTrigger);
    return shortcut;
}

QString QVPortalShortcut::triggerDescription() const
{
    return properties.value(QStringLiteral("trigger_description")).toString();
}

QList<QVPortalShortcut> QVPortalShortcut::listFrom(const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<QList<QVPortalShortcut>>())
        return value.value<QList<QVPortalShortcut>>();
    if (value.metaType() != QMetaType::fromType<QDBusArgument>())
        return {};
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("a(sa{sv})"))
        return {};
    return qdbus_cast<QList<QVPortalShortcut>>(argument);
}

void QVPortalShortcut::registerDBusTypes()
{
    qDBusRegisterMetaType<QVPortalShortcut>();
    qDBusRegisterMetaType<QList<QVPortalShortcut>>();
}

QDBusArgument &operator<<(QDBusArgument &argument, const QVPortalShortcut &shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, QVPortalShortcut &shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}
