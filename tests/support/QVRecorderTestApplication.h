#pragma once

#include "QVCustomControlRepresentation.h"
#include "QVHotKey.h"

// Stands for the application around hot key fields: its controls, the service
// they register with, and which control holds a combination.
class QVRecorderTestApplication final : public QVHotKeyDelegate
{
public:
    explicit QVRecorderTestApplication(QVHotKeyService &service)
        : m_service(service)
    {
    }

    QVCustomControlRef addControl(qint64 action)
    {
        auto control = std::make_shared<QVCustomControlRepresentation>(this);
        control->setAction(action);
        controls.append(control);
        return control;
    }
    // Gives the control a hot key as a recording would; null when refused.
    static QVHotKeyRef giveHotKey(
        QVCustomControlRepresentation &control, quint16 keyCode, quint64 flags, const QString &text)
    {
        const QString identifier = control.uniqueIdentifier();
        const QVHotKeyRef hotKey = QVHotKey::hotKeyWithIdentifer(identifier, text, keyCode, flags);
        return control.shouldSetHotKey(hotKey, identifier) ? hotKey : nullptr;
    }

    QList<QVHotKeyRef> hotKeys() const override
    {
        QList<QVHotKeyRef> hotKeys;
        for (const QVCustomControlRef &control : controls)
            if (control->hotKey())
                hotKeys.append(control->hotKey());
        return hotKeys;
    }
    quint32 hotKeySignature() const override { return QVHotKey::signature; }
    QVHotKeyService *hotKeyService() const override { return &m_service; }
    QString identifierForHotKeyTextView(QObject *) override { return {}; }
    bool shouldSetHotKey(const QVHotKeyRef &, const QString &) override { return false; }
    QString titleOfControlHoldingHotKey(const QVHotKey &hotKey) override
    {
        for (const QVCustomControlRef &control : controls)
            if (control->hotKey() && control->hotKey()->isRegistered() && control->hotKey()->isEqualToHotKey(hotKey))
                return control->displayTitleWithSuffixes(nullptr);
        return {};
    }

    QList<QVCustomControlRef> controls;

private:
    QVHotKeyService &m_service;
};
