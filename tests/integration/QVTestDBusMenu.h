#pragma once

#include <QDBusConnection>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

// Reads and drives a tray icon's menu the way a panel does, over com.canonical.dbusmenu.
class QVTestDBusMenu final
{
public:
    struct Item {
        int id = 0;
        QVariantMap properties;
        QList<Item> children;

        // The label as a panel shows it: "_" marks a mnemonic, "__" is an underscore.
        QString label() const;
        bool isSeparator() const
        {
            return properties.value(QStringLiteral("type")).toString() == QLatin1String("separator");
        }
        bool isEnabled() const { return properties.value(QStringLiteral("enabled"), true).toBool(); }
        bool isVisible() const { return properties.value(QStringLiteral("visible"), true).toBool(); }
        bool isChecked() const { return properties.value(QStringLiteral("toggle-state")).toInt() == 1; }
        bool hasIcon() const { return !properties.value(QStringLiteral("icon-data")).toByteArray().isEmpty(); }
        // The shortcut as the panel shows it, e.g. "Control+Alt+Right"; empty when there is none.
        QString shortcut() const;
    };

    // The menu of the tray item that the service exports.
    QVTestDBusMenu(QDBusConnection connection, const QString &itemService);

    // The object path the item names for its menu; empty when it names none.
    QString menuPath() const { return m_menuPath; }
    // A property of the tray item itself (ToolTip, IconPixmap, Status ...).
    QVariant itemProperty(const QString &name) const;

    // What a panel does as it opens the menu; false when the call fails.
    bool aboutToShow();
    // The whole menu; an empty root when the call fails.
    Item layout() const;
    // The visible items below the root, in order, separators included.
    QList<Item> visibleItems() const;
    // Labels of the visible items, separators as "-".
    QStringList visibleLabels() const;
    // Chooses the visible item with the label; false when there is none.
    bool click(const QString &label);
    bool clickItem(int id);

private:
    QDBusConnection m_connection;
    QString m_service;
    QString m_menuPath;
};
