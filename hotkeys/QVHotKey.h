#pragma once

#include "QVHotKeyDelegate.h"
#include "QVHotKeyService.h"

#include <QJsonObject>
#include <QString>

struct QVEvent;

// One system-wide hot key: a key code with modifier flags, the identifier of its
// owner and the readable text recorded for it. Unregisters itself when it goes.
class QVHotKey final
{
public:
    static constexpr quint32 signature = 0x4356686B; // 'CVhk'
    // The key codes X can report.
    static constexpr qint64 lowestKeyCode = 8;
    static constexpr qint64 highestKeyCode = 255;

    QVHotKey(const QString &identifier, const QString &visualRepresentation, quint16 keyCode, quint64 modifierFlags);
    ~QVHotKey();
    QVHotKey(const QVHotKey &) = delete;
    QVHotKey &operator=(const QVHotKey &) = delete;

    static QVHotKeyRef hotKeyWithIdentifer(
        const QString &identifier, const QString &visualRepresentation, quint16 keyCode, quint64 modifierFlags);
    // Nothing when the identifier or the text is missing. Stored values that name
    // no key give a hot key that never registers (the refusal says why) and writes
    // the dictionary back as it was.
    static QVHotKeyRef hotKeyWithDictionaryRepresentation(const QJsonObject &dictionary);
    QJsonObject dictionaryRepresentation() const;

    QString identifier() const { return m_identifier; }
    // The recorded text, redone for the current modifier flags and settings.
    QString visualRepresentation() const;
    quint16 keyCode() const { return m_keyCode; }
    quint64 modifierFlags() const { return m_modifierFlags; }
    QVHotKeyService::Handle hotKeyReference() const { return m_hotKeyReference; }

    bool isEqualToHotKey(const QVHotKey &other) const;
    // Only a registered hot key matches: one that is kept without its keys triggers nothing.
    bool matchesEvent(const QVEvent *event) const;

    // Registers the combination for the delegate; with testOnly it is released at
    // once, proving only that it could be had. A refusal's reason goes to reason.
    bool registerForDelegate(QVHotKeyDelegate *delegate, bool testOnly = false, QString *reason = nullptr);
    bool testForDelegate(QVHotKeyDelegate *delegate) { return registerForDelegate(delegate, true); }
    void unregister();
    // False for a hot key kept although its keys could not be had (held by another
    // program, used by another control, unusable): it is inactive.
    bool isRegistered() const { return m_hotKeyReference != 0; }

    // "Hot Keys Require Exact Modifier Key Matches"
    static bool requireExactModifierKeyMatches();
    // The negation of "Hot Keys Account For Caps Lock Status"
    static bool ignoreCapsLock();

    // The id the next registration attempt will use (0 ... 1000000, then round again).
    static quint32 singletonIncrementingID();
    static void setSingletonIncrementingID(quint32 identifier);

private:
    static QString unusableReasonFor(qint64 keyCode, quint64 modifierFlags);

    QString m_identifier;
    QString m_visualRepresentation;
    QVHotKeyService::Handle m_hotKeyReference = 0;
    QVHotKeyService *m_service = nullptr; // where the reference came from
    quint16 m_keyCode = 0;
    quint64 m_modifierFlags = 0;
    QString m_unusableReason;
    QJsonObject m_storedDictionary; // written back unchanged when unusable
};
