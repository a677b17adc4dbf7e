#include "QVAccessibilityTree.h"

#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QThread>

QVAccessibilityTree::QVAccessibilityTree(const QString &sessionBusAddress, const QString &accessibilityBusAddress)
    : m_sessionBusAddress(sessionBusAddress)
    , m_accessibilityBusAddress(accessibilityBusAddress)
{
}

bool QVAccessibilityTree::read(const QString &application)
{
    m_nodes.clear();
    QProcess reader;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_sessionBusAddress);
    environment.insert(QStringLiteral("AT_SPI_BUS_ADDRESS"), m_accessibilityBusAddress);
    reader.setProcessEnvironment(environment);
    // Debian's python, where pyatspi is installed.
    reader.start(QStringLiteral("/usr/bin/python3"), { QStringLiteral(CORVANE_ATSPI_SCRIPT), application });
    if (!reader.waitForFinished(20000) || reader.exitCode() != 0)
        return false;
    for (const QByteArray &line : reader.readAllStandardOutput().split('\n')) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        if (object.isEmpty())
            continue;
        Node node;
        node.depth = object.value(QStringLiteral("depth")).toInt();
        node.role = object.value(QStringLiteral("role")).toString();
        node.name = object.value(QStringLiteral("name")).toString();
        const QJsonArray box = object.value(QStringLiteral("extents")).toArray();
        if (box.size() == 4)
            node.extents = QRect(box[0].toInt(), box[1].toInt(), box[2].toInt(), box[3].toInt());
        for (const QJsonValue &state : object.value(QStringLiteral("states")).toArray())
            node.states.append(state.toString());
        node.text = object.value(QStringLiteral("text")).toString();
        m_nodes.append(node);
    }
    return !m_nodes.isEmpty();
}

const QVAccessibilityTree::Node *QVAccessibilityTree::find(const QString &role, const QString &name) const
{
    for (const Node &node : m_nodes)
        if (node.role == role && node.name == name && node.has(QStringLiteral("showing")))
            return &node;
    return nullptr;
}

const QVAccessibilityTree::Node *QVAccessibilityTree::waitFor(
    const QString &application, const QString &role, const QString &name, int milliseconds)
{
    QDeadlineTimer deadline(milliseconds);
    do {
        if (read(application))
            if (const Node *node = find(role, name))
                return node;
        QThread::msleep(200);
    } while (!deadline.hasExpired());
    return nullptr;
}

QList<QVAccessibilityTree::Node> QVAccessibilityTree::unnamedControls() const
{
    static const QStringList controls { QStringLiteral("push button"), QStringLiteral("check box"),
        QStringLiteral("combo box"), QStringLiteral("radio button"), QStringLiteral("text"),
        QStringLiteral("toggle button"), QStringLiteral("scroll pane"), QStringLiteral("page tab"),
        QStringLiteral("spin button"), QStringLiteral("slider"), QStringLiteral("list") };
    QList<Node> unnamed;
    for (const Node &node : m_nodes)
        if (controls.contains(node.role) && node.has(QStringLiteral("showing")) && node.name.isEmpty())
            unnamed.append(node);
    return unnamed;
}

QString QVAccessibilityTree::dump() const
{
    QString text;
    for (const Node &node : m_nodes)
        text += QString(node.depth * 2, u' ') + node.role + QStringLiteral(" \"") + node.name + QStringLiteral("\" ")
            + node.states.join(u',') + u'\n';
    return text;
}
