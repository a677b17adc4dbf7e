#include "QVCustomControlRepresentation.h"

#include "QVDictionaryExtensions.h"
#include "QVStringExtensions.h"

#include <QCoreApplication>

namespace
{

namespace Key
{
const QString identifier = QStringLiteral("Identifier");
const QString title = QStringLiteral("Title");
const QString collapsed = QStringLiteral("Collapsed");
const QString action = QStringLiteral("Action");
const QString moveDirection = QStringLiteral("Move Direction");
const QString moveDelta = QStringLiteral("Move Delta");
const QString accelerate = QStringLiteral("Accelerate");
const QString confine = QStringLiteral("Confine to Display");
const QString edgeOrCorner = QStringLiteral("Move to Edge/Corner Direction");
const QString otherDisplay = QStringLiteral("Move to Other Display Direction");
const QString reposition = QStringLiteral("Reposition Proportionally");
const QString loop = QStringLiteral("Loop Through Displays");
const QString hotKey = QStringLiteral("Hot Key");
} // namespace Key

QString tr(const char *text)
{
    return QCoreApplication::translate("QVCustomControlRepresentation", text);
}

qint64 integerOr(const QJsonObject &dictionary, const QString &key, qint64 fallback)
{
    return dictionary.contains(key) ? QVIntegerForKey(dictionary, key) : fallback;
}

// Titles of the eight directions, indexed by position code 3 ... 10.
const char *titleByPosition(qint64 position, const char *const (&titles)[8], const char *fallback)
{
    if (position < QVPosition::Top || position > QVPosition::TopLeft)
        return fallback;
    const char *title = titles[position - QVPosition::Top];
    return title ? title : fallback;
}

QString moveTitle(qint64 direction)
{
    static const char *const titles[8] = {
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move Up"),
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move Up & Right"),
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move Right"),
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move Down & Right"),
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move Down"),
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move Down & Left"),
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move Left"),
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move Up & Left"),
    };
    return tr(titleByPosition(direction, titles, QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move")));
}

QString edgeOrCornerTitle(qint64 position)
{
    static const char *const titles[8] = {
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move to Top Edge"),
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move to Top Right Corner"),
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move to Right Edge"),
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move to Bottom Right Corner"),
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move to Bottom Edge"),
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move to Bottom Left Corner"),
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move to Left Edge"),
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move to Top Left Corner"),
    };
    return tr(
        titleByPosition(position, titles, QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move to Edge/Corner")));
}

QString otherDisplayTitle(qint64 direction)
{
    // Only the four sides select a display; corners get the generic title.
    static const char *const titles[8] = {
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move to Display Above"),
        nullptr,
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move to Display on the Right"),
        nullptr,
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move to Display Below"),
        nullptr,
        QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move to Display on the Left"),
        nullptr,
    };
    return tr(titleByPosition(
        direction, titles, QT_TRANSLATE_NOOP("QVCustomControlRepresentation", "Move to Other Display")));
}

} // namespace

QVCustomControlRepresentation::QVCustomControlRepresentation(QVHotKeyDelegate *applicationDelegate)
    : m_applicationDelegate(applicationDelegate)
{
}

QVCustomControlRef QVCustomControlRepresentation::controlWithDictionaryRepresentation(
    const QJsonObject &dictionary, QVHotKeyDelegate *applicationDelegate, QString *unregisteredReason)
{
    auto control = std::make_shared<QVCustomControlRepresentation>(applicationDelegate);
    control->m_uniqueIdentifier = QVStringForKey(dictionary, Key::identifier);
    control->m_title = QVStringForKey(dictionary, Key::title);
    control->m_collapsed = QVBoolForKey(dictionary, Key::collapsed);
    control->m_action = integerOr(dictionary, Key::action, QVAction::Move);
    control->m_moveDirection = integerOr(dictionary, Key::moveDirection, QVPosition::Right);
    control->m_moveDelta = integerOr(dictionary, Key::moveDelta, 1);
    control->m_moveAccelerate = QVBoolForKey(dictionary, Key::accelerate);
    control->m_confinedToDisplay = QVBoolForKey(dictionary, Key::confine);
    control->m_moveToEdgeOrCornerPosition = integerOr(dictionary, Key::edgeOrCorner, QVPosition::Right);
    control->m_moveToOtherDisplayDirection = integerOr(dictionary, Key::otherDisplay, QVPosition::Right);
    control->m_moveToOtherDisplayReposition = QVBoolForKey(dictionary, Key::reposition);
    control->m_moveToOtherDisplayLoop = QVBoolForKey(dictionary, Key::loop);

    // Kept even when it cannot be registered: the keys may be free at the next try.
    control->m_hotKey = QVHotKey::hotKeyWithDictionaryRepresentation(dictionary.value(Key::hotKey).toObject());
    QString reason;
    if (control->m_hotKey && !control->m_hotKey->registerForDelegate(control.get(), false, &reason)
        && unregisteredReason)
        *unregisteredReason = reason;
    return control;
}

QJsonObject QVCustomControlRepresentation::dictionaryRepresentation()
{
    QJsonObject dictionary;
    dictionary.insert(Key::identifier, uniqueIdentifier());
    QVTryToSetObject(dictionary, m_title, Key::title);
    dictionary.insert(Key::collapsed, m_collapsed);
    dictionary.insert(Key::action, m_action);
    dictionary.insert(Key::moveDirection, m_moveDirection);
    dictionary.insert(Key::moveDelta, m_moveDelta);
    dictionary.insert(Key::accelerate, m_moveAccelerate);
    dictionary.insert(Key::confine, m_confinedToDisplay);
    dictionary.insert(Key::edgeOrCorner, m_moveToEdgeOrCornerPosition);
    dictionary.insert(Key::otherDisplay, m_moveToOtherDisplayDirection);
    dictionary.insert(Key::reposition, m_moveToOtherDisplayReposition);
    dictionary.insert(Key::loop, m_moveToOtherDisplayLoop);
    if (m_hotKey)
        dictionary.insert(Key::hotKey, m_hotKey->dictionaryRepresentation());
    return dictionary;
}

QString QVCustomControlRepresentation::uniqueIdentifier()
{
    if (m_uniqueIdentifier.isNull())
        m_uniqueIdentifier = QVNewUUIDString();
    return m_uniqueIdentifier;
}

QString QVCustomControlRepresentation::displayTitleWithSuffixes(QStringList *suffixes) const
{
    if (suffixes)
        suffixes->clear();
    switch (m_action) {
    case QVAction::MoveToCenter: return tr("Center");
    case QVAction::Move:
        if (suffixes) {
            suffixes->append(QVStringWithInteger(tr("%ld px"), m_moveDelta));
            if (m_moveAccelerate)
                suffixes->append(tr("Accelerate"));
            if (m_confinedToDisplay)
                suffixes->append(tr("Confine to Display"));
        }
        return moveTitle(m_moveDirection);
    case QVAction::MoveToEdgeOrCorner: return edgeOrCornerTitle(m_moveToEdgeOrCornerPosition);
    case QVAction::MoveToOtherDisplay:
        if (suffixes) {
            if (m_moveToOtherDisplayReposition)
                suffixes->append(tr("Reposition"));
            if (m_moveToOtherDisplayLoop)
                suffixes->append(tr("Loop"));
        }
        return otherDisplayTitle(m_moveToOtherDisplayDirection);
    case QVAction::MoveToScreenSection: return tr("Move to Screen Section...");
    case QVAction::Click: return tr("Click");
    case QVAction::RightClick: return tr("Right Click");
    default: return m_title.isNull() ? tr("Untitled") : m_title;
    }
}

QList<QVHotKeyRef> QVCustomControlRepresentation::hotKeys() const
{
    return m_applicationDelegate ? m_applicationDelegate->hotKeys() : QList<QVHotKeyRef>();
}

quint32 QVCustomControlRepresentation::hotKeySignature() const
{
    return m_applicationDelegate ? m_applicationDelegate->hotKeySignature() : QVHotKey::signature;
}

QVHotKeyService *QVCustomControlRepresentation::hotKeyService() const
{
    return m_applicationDelegate ? m_applicationDelegate->hotKeyService() : nullptr;
}

QString QVCustomControlRepresentation::identifierForHotKeyTextView(QObject *textView)
{
    Q_UNUSED(textView);
    return uniqueIdentifier();
}

bool QVCustomControlRepresentation::shouldSetHotKey(const QVHotKeyRef &hotKey, const QString &identifier)
{
    if (identifier.isNull())
        return false;
    if (!hotKey) {
        m_hotKey.reset();
        return true;
    }
    if (m_action == QVAction::None || !hotKey->registerForDelegate(this))
        return false;
    m_hotKey = hotKey;
    return true;
}

QString QVCustomControlRepresentation::titleOfControlHoldingHotKey(const QVHotKey &hotKey)
{
    return m_applicationDelegate ? m_applicationDelegate->titleOfControlHoldingHotKey(hotKey) : QString();
}
