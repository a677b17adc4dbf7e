#pragma once

#include "QVActionCodes.h"
#include "QVHotKey.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <memory>

class QVCustomControlRepresentation;
using QVCustomControlRef = std::shared_ptr<QVCustomControlRepresentation>;

// One entry of the user's list: an action with its parameters and the hot key
// that triggers it. It registers its hot keys on behalf of the application.
class QVCustomControlRepresentation final : public QVHotKeyDelegate
{
public:
    // applicationDelegate stands for the application in hot key registration.
    explicit QVCustomControlRepresentation(QVHotKeyDelegate *applicationDelegate);

    // A record read from its stored form; its stored hot key is registered again.
    // One that cannot be is kept unregistered, to be tried again later and written
    // back as stored; unregisteredReason then says why.
    static QVCustomControlRef controlWithDictionaryRepresentation(
        const QJsonObject &dictionary, QVHotKeyDelegate *applicationDelegate, QString *unregisteredReason = nullptr);
    QJsonObject dictionaryRepresentation();

    // Made on first use and kept.
    QString uniqueIdentifier();
    // The readable title; suffixes, if given, receive the parameters worth showing.
    QString displayTitleWithSuffixes(QStringList *suffixes) const;

    QString title() const { return m_title; }
    void setTitle(const QString &title) { m_title = title; }
    bool collapsed() const { return m_collapsed; }
    void setCollapsed(bool collapsed) { m_collapsed = collapsed; }
    qint64 action() const { return m_action; }
    void setAction(qint64 action) { m_action = action; }
    QVHotKeyRef hotKey() const { return m_hotKey; }
    void setHotKey(const QVHotKeyRef &hotKey) { m_hotKey = hotKey; }
    // A hot key is kept but does not trigger the control: its keys could not be had.
    bool hasInactiveHotKey() const { return m_hotKey && !m_hotKey->isRegistered(); }
    qint64 moveDirection() const { return m_moveDirection; }
    void setMoveDirection(qint64 direction) { m_moveDirection = direction; }
    qint64 moveDelta() const { return m_moveDelta; }
    void setMoveDelta(qint64 delta) { m_moveDelta = delta; }
    bool moveAccelerate() const { return m_moveAccelerate; }
    void setMoveAccelerate(bool accelerate) { m_moveAccelerate = accelerate; }
    bool confinedToDisplay() const { return m_confinedToDisplay; }
    void setConfinedToDisplay(bool confined) { m_confinedToDisplay = confined; }
    qint64 moveToEdgeOrCornerPosition() const { return m_moveToEdgeOrCornerPosition; }
    void setMoveToEdgeOrCornerPosition(qint64 position) { m_moveToEdgeOrCornerPosition = position; }
    qint64 moveToOtherDisplayDirection() const { return m_moveToOtherDisplayDirection; }
    void setMoveToOtherDisplayDirection(qint64 direction) { m_moveToOtherDisplayDirection = direction; }
    bool moveToOtherDisplayReposition() const { return m_moveToOtherDisplayReposition; }
    void setMoveToOtherDisplayReposition(bool reposition) { m_moveToOtherDisplayReposition = reposition; }
    bool moveToOtherDisplayLoop() const { return m_moveToOtherDisplayLoop; }
    void setMoveToOtherDisplayLoop(bool loop) { m_moveToOtherDisplayLoop = loop; }

    // QVHotKeyDelegate
    QList<QVHotKeyRef> hotKeys() const override;
    quint32 hotKeySignature() const override;
    QVHotKeyService *hotKeyService() const override;
    QString identifierForHotKeyTextView(QObject *textView) override;
    bool shouldSetHotKey(const QVHotKeyRef &hotKey, const QString &identifier) override;
    QString titleOfControlHoldingHotKey(const QVHotKey &hotKey) override;

private:
    QVHotKeyDelegate *m_applicationDelegate;
    QString m_uniqueIdentifier;
    QString m_title;
    bool m_collapsed = false;
    qint64 m_action = QVAction::Move;
    QVHotKeyRef m_hotKey;
    qint64 m_moveDirection = QVPosition::Right;
    qint64 m_moveDelta = 1;
    bool m_moveAccelerate = false;
    bool m_confinedToDisplay = false;
    qint64 m_moveToEdgeOrCornerPosition = QVPosition::Right;
    qint64 m_moveToOtherDisplayDirection = QVPosition::Right;
    bool m_moveToOtherDisplayReposition = false;
    bool m_moveToOtherDisplayLoop = false;
};
