#pragma once

#include <QList>
#include <QRect>
#include <QString>
#include <QStringList>

// One application's widgets as a screen reader sees them: read over AT-SPI by
// a small script, found by role and accessible name.
class QVAccessibilityTree final
{
public:
    struct Node {
        int depth = 0;
        QString role;
        QString name;
        QRect extents; // screen coordinates
        QStringList states;
        QString text;

        bool has(const QString &state) const { return states.contains(state); }
        QPoint center() const { return extents.center(); }
    };

    QVAccessibilityTree(const QString &sessionBusAddress, const QString &accessibilityBusAddress);

    // Reads the tree of the application with that name; false when it is not there.
    bool read(const QString &application);
    const QList<Node> &nodes() const { return m_nodes; }
    // The first showing node with the role and name, or nullptr.
    const Node *find(const QString &role, const QString &name) const;
    // Reads again until the node shows or the time runs out.
    const Node *waitFor(const QString &application, const QString &role, const QString &name, int milliseconds = 10000);
    // Every showing node that a screen reader could not name: no name and no text.
    QList<Node> unnamedControls() const;
    QString dump() const;

private:
    QString m_sessionBusAddress;
    QString m_accessibilityBusAddress;
    QList<Node> m_nodes;
};
