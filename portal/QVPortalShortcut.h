#pragma once

#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariantMap>

// One entry of the portal's shortcut lists, a(sa{sv}): the id and its properties
// (description, preferred_trigger on the way in; trigger_description on the way back).
struct QVPortalShortcut final {
    QString id;
    QVariantMap properties;

    static QVPortalShortcut make(const QString &id, const QString &description, const QString &preferredTrigger);
    QString triggerDescription() const;
    // Reads an a(sa{sv}) value as it comes inside an a{sv}.
    static QList<QVPortalShortcut> listFrom(const QVariant &value);
    // Makes the D-Bus marshalling of the type known; call before the first use.
    static void registerDBusTypes();

    bool operator==(const QVPortalShortcut &other) const = default;
};

QDBusArgument &operator<<(QDBusArgument &argument, const QVPortalShortcut &shortcut);
const QDBusArgument &operator>>(const QDBusArgument &argument, QVPortalShortcut &shortcut);

Q_DECLARE_METATYPE(QVPortalShortcut)
