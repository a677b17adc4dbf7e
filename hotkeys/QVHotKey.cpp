#include "QVHotKey.h"

#include "QVDictionaryExtensions.h"
#include "QVEvent.h"
#include "QVKeyNames.h"
#include "QVModifierFlags.h"
#include "QVUserDefaults.h"

namespace
{

quint32 incrementingID = 0;
constexpr quint32 largestID = 1000000;

const QString identifierKey = QStringLiteral("Identifier");
const QString visualRepresentationKey = QStringLiteral("Visual Representation");
const QString keyCodeKey = QStringLiteral("Key Code");
const QString modifierFlagsKey = QStringLiteral("Modifier Flags");

bool defaultsBool(const QString &key)
{
    const QVUserDefaults *defaults = QVUserDefaults::standardUserDefaults();
    return defaults && defaults->boolForKey(key);
}

QVCapsLockRule capsLockRule(quint64 flags)
{
    if (QVHotKey::ignoreCapsLock())
        return QVCapsLockRule::Ignored;
    return (flags & QVModifierFlag::CapsLock) ? QVCapsLockRule::MustBeOn : QVCapsLockRule::MustBeOff;
}

} // namespace

QVHotKey::QVHotKey(
    const QString &identifier, const QString &visualRepresentation, quint16 keyCode, quint64 modifierFlags)
    : m_identifier(identifier)
    , m_visualRepresentation(visualRepresentation)
    , m_keyCode(keyCode)
    , m_modifierFlags(modifierFlags)
{
}

QVHotKey::~QVHotKey()
{
    unregister();
}

QVHotKeyRef QVHotKey::hotKeyWithIdentifer(
    const QString &identifier, const QString &visualRepresentation, quint16 keyCode, quint64 modifierFlags)
{
    return std::make_shared<QVHotKey>(identifier, visualRepresentation, keyCode, modifierFlags);
}

QVHotKeyRef QVHotKey::hotKeyWithDictionaryRepresentation(const QJsonObject &dictionary)
{
    const QString identifier = QVStringForKey(dictionary, identifierKey);
    const QString text = QVStringForKey(dictionary, visualRepresentationKey);
    if (identifier.isNull() || text.isNull())
        return nullptr;
    const quint64 flags = static_cast<quint64>(QVIntegerForKey(dictionary, modifierFlagsKey));
    const qint64 keyCode = QVIntegerForKey(dictionary, keyCodeKey);
    const QString unusable = unusableReasonFor(keyCode, flags);
    if (unusable.isEmpty())
        return hotKeyWithIdentifer(identifier, text, static_cast<quint16>(keyCode), flags);
    // Cut down to 16 bits the code would name some other key: keep no key at all.
    const QVHotKeyRef hotKey = hotKeyWithIdentifer(identifier, text, 0, flags);
    hotKey->m_unusableReason = unusable;
    hotKey->m_storedDictionary = dictionary;
    return hotKey;
}

QString QVHotKey::unusableReasonFor(qint64 keyCode, quint64 modifierFlags)
{
    if (keyCode < lowestKeyCode || keyCode > highestKeyCode)
        return QStringLiteral("key code %1 is not an X key code (%2 to %3)")
            .arg(keyCode)
            .arg(lowestKeyCode)
            .arg(highestKeyCode);
    if (const quint64 unknown = modifierFlags & ~QVKnownModifierFlags)
        return QStringLiteral("modifier flags 0x%1 carry unknown bits 0x%2")
            .arg(modifierFlags, 0, 16)
            .arg(unknown, 0, 16);
    return {};
}

QJsonObject QVHotKey::dictionaryRepresentation() const
{
    if (!m_unusableReason.isEmpty())
        return m_storedDictionary;
    QJsonObject dictionary;
    QVTryToSetObject(dictionary, m_identifier, identifierKey);
    QVTryToSetObject(dictionary, visualRepresentation(), visualRepresentationKey);
    dictionary.insert(keyCodeKey, m_keyCode);
    dictionary.insert(modifierFlagsKey, static_cast<double>(m_modifierFlags));
    return dictionary;
}

QString QVHotKey::visualRepresentation() const
{
    if (m_visualRepresentation.isNull())
        return {};
    QString name = QVStringForKeyCode(m_keyCode, false);
    if (name.isNull()) {
        name = QVStringByTrimmingModifierPrefix(m_visualRepresentation);
        if (name.isEmpty())
            return m_visualRepresentation;
    }
    return QVReadableKeyStringPrefixWithModifierFlags(m_modifierFlags) + name;
}

bool QVHotKey::isEqualToHotKey(const QVHotKey &other) const
{
    if (&other == this)
        return true;
    return other.m_keyCode == m_keyCode && QVIsModifierFlagsMatch(other.m_modifierFlags, m_modifierFlags);
}

bool QVHotKey::matchesEvent(const QVEvent *event) const
{
    if (!event || !isRegistered())
        return false;
    // The key first: every control is asked on each press, and the modifier rule
    // reads two settings, so only the one whose key it is pays for that.
    bool sameKey = false;
    switch (event->type) {
    case QVEvent::KeyDown: sameKey = event->keyCode == m_keyCode; break;
    case QVEvent::SystemDefined:
        sameKey = event->subtype == QVEvent::HotKeyPressed
            && static_cast<quint32>(event->data1) == static_cast<quint32>(m_hotKeyReference);
        break;
    default: break;
    }
    return sameKey && QVIsModifierFlagsMatch(event->modifierFlags, m_modifierFlags);
}

bool QVHotKey::registerForDelegate(QVHotKeyDelegate *delegate, bool testOnly, QString *reason)
{
    if (!m_unusableReason.isEmpty()) {
        if (reason)
            *reason = m_unusableReason;
        return false;
    }
    if (isRegistered()) {
        if (testOnly)
            return true;
        unregister();
    }
    for (const QVHotKeyRef &hotKey : delegate->hotKeys()) {
        // One kept without its keys holds nothing, so it stands in no one's way.
        if (hotKey && hotKey.get() != this && hotKey->isRegistered() && hotKey->isEqualToHotKey(*this)) {
            if (reason)
                *reason = QStringLiteral("another control uses the same keys");
            return false;
        }
    }

    QVHotKeyRegistration registration;
    registration.identifier = incrementingID++;
    registration.signature = delegate->hotKeySignature();
    if (incrementingID > largestID)
        incrementingID = 0;
    registration.keyCode = m_keyCode;
    registration.carbonModifiers = QVCarbonModifiersFromCocoaModifiers(static_cast<quint32>(m_modifierFlags));
    registration.capsLock = capsLockRule(m_modifierFlags);

    QVHotKeyService *service = delegate->hotKeyService();
    if (!service)
        return false;
    const std::optional<QVHotKeyService::Handle> handle = service->registerHotKey(registration, reason);
    if (!handle)
        return false;
    if (testOnly) {
        service->unregisterHotKey(*handle);
        return true;
    }
    m_hotKeyReference = *handle;
    m_service = service;
    return true;
}

void QVHotKey::unregister()
{
    if (!m_hotKeyReference)
        return;
    m_service->unregisterHotKey(m_hotKeyReference);
    m_hotKeyReference = 0;
    m_service = nullptr;
}

bool QVHotKey::requireExactModifierKeyMatches()
{
    return defaultsBool(QStringLiteral("Hot Keys Require Exact Modifier Key Matches"));
}

bool QVHotKey::ignoreCapsLock()
{
    return !defaultsBool(QStringLiteral("Hot Keys Account For Caps Lock Status"));
}

quint32 QVHotKey::singletonIncrementingID()
{
    return incrementingID;
}

void QVHotKey::setSingletonIncrementingID(quint32 identifier)
{
    incrementingID = identifier;
}
