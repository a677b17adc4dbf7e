#include "QVTestDBusMenu.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDateTime>

namespace
{

const QString menuInterface = QStringLiteral("com.canonical.dbusmenu");

void readItem(const QDBusArgument &argument, QVTestDBusMenu::Item &item)
{
    argument.beginStructure();
    argument >> item.id >> item.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        QVTestDBusMenu::Item childItem;
        readItem(child.variant().value<QDBusArgument>(), childItem);
        item.children.append(childItem);
    }
    argument.endArray();
    argument.endStructure();
}

} // namespace

QString QVTestDBusMenu::Item::label() const
{
    const QString marked = properties.value(QStringLiteral("label")).toString();
    QString shown;
    for (qsizetype index = 0; index < marked.size(); ++index) {
        if (marked[index] == u'_' && index + 1 < marked.size())
            ++index;
        shown += marked[index];
    }
    return shown;
}

QString QVTestDBusMenu::Item::shortcut() const
{
    const QVariant value = properties.value(QStringLiteral("shortcut"));
    if (!value.canConvert<QDBusArgument>())
        return {};
    // An array of key combinations, each an array of key names.
    const QDBusArgument argument = value.value<QDBusArgument>();
    QStringList combinations;
    argument.beginArray();
    while (!argument.atEnd()) {
        QStringList keys;
        argument >> keys;
        combinations.append(keys.join(u'+'));
    }
    argument.endArray();
    return combinations.join(QStringLiteral(", "));
}

QVTestDBusMenu::QVTestDBusMenu(QDBusConnection connection, const QString &itemService)
    : m_connection(std::move(connection))
    , m_service(itemService)
{
    const QVariant menu = itemProperty(QStringLiteral("Menu"));
    m_menuPath = menu.value<QDBusObjectPath>().path();
}

QVariant QVTestDBusMenu::itemProperty(const QString &name) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(m_service, QStringLiteral("/StatusNotifierItem"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call << QStringLiteral("org.kde.StatusNotifierItem") << name;
    const QDBusMessage reply = m_connection.call(call);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return {};
    return reply.arguments().constFirst().value<QDBusVariant>().variant();
}

bool QVTestDBusMenu::aboutToShow()
{
    QDBusMessage call
        = QDBusMessage::createMethodCall(m_service, m_menuPath, menuInterface, QStringLiteral("AboutToShow"));
    call << 0;
    return m_connection.call(call).type() == QDBusMessage::ReplyMessage;
}

QVTestDBusMenu::Item QVTestDBusMenu::layout() const
{
    QDBusMessage call
        = QDBusMessage::createMethodCall(m_service, m_menuPath, menuInterface, QStringLiteral("GetLayout"));
    call << 0 << -1 << QStringList();
    const QDBusMessage reply = m_connection.call(call);
    Item root;
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() < 2)
        return root;
    readItem(reply.arguments().at(1).value<QDBusArgument>(), root);
    return root;
}

QList<QVTestDBusMenu::Item> QVTestDBusMenu::visibleItems() const
{
    QList<Item> items;
    for (const Item &item : layout().children)
        if (item.isVisible())
            items.append(item);
    return items;
}

QStringList QVTestDBusMenu::visibleLabels() const
{
    QStringList labels;
    for (const Item &item : visibleItems())
        labels.append(item.isSeparator() ? QStringLiteral("-") : item.label());
    return labels;
}

bool QVTestDBusMenu::click(const QString &label)
{
    for (const Item &item : visibleItems())
        if (!item.isSeparator() && item.label() == label)
            return clickItem(item.id);
    return false;
}

bool QVTestDBusMenu::clickItem(int id)
{
    QDBusMessage call = QDBusMessage::createMethodCall(m_service, m_menuPath, menuInterface, QStringLiteral("Event"));
    call << id << QStringLiteral("clicked") << QVariant::fromValue(QDBusVariant(0))
         << uint(QDateTime::currentSecsSinceEpoch());
    return m_connection.call(call).type() == QDBusMessage::ReplyMessage;
}
