#pragma once

#include <QList>
#include <QString>

#include <memory>
#include <optional>

class QObject;
class QVHotKey;
class QVHotKeyService;

using QVHotKeyRef = std::shared_ptr<QVHotKey>;

// The owner on whose behalf a hot key is registered.
class QVHotKeyDelegate
{
public:
    virtual ~QVHotKeyDelegate() = default;

    // Every hot key the application uses, for the conflict test.
    virtual QList<QVHotKeyRef> hotKeys() const = 0;
    // The four-character code every hot key is registered under.
    virtual quint32 hotKeySignature() const = 0;
    // The service that registrations go to.
    virtual QVHotKeyService *hotKeyService() const = 0;
    // The identifier a hot key recorded in the given field is to carry.
    virtual QString identifierForHotKeyTextView(QObject *textView) = 0;
    // Asked before a recorded hot key (or none) is taken; the delegate registers it.
    virtual bool shouldSetHotKey(const QVHotKeyRef &hotKey, const QString &identifier) = 0;
    // Told after the field has taken a hot key.
    virtual void didSetHotKey(const QVHotKeyRef &hotKey, const QString &identifier)
    {
        Q_UNUSED(hotKey);
        Q_UNUSED(identifier);
    }
    // The title of the control whose hot key the given one would collide with, or
    // a null string when no control of Corvane holds it (another program may).
    virtual QString titleOfControlHoldingHotKey(const QVHotKey &hotKey)
    {
        Q_UNUSED(hotKey);
        return {};
    }
    // Font size for the field's text; nothing means the field's own default.
    virtual std::optional<double> fontSizeForHotKeyTextView(QObject *textView)
    {
        Q_UNUSED(textView);
        return std::nullopt;
    }
};
