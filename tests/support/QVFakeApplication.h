#pragma once

#include "QVFakePlatform.h"
#include "QVHotKey.h"
#include "QVUserDefaults.h"

#include <QTemporaryDir>

#include <functional>

// Stands for the application: the fake platform, a settings store on a temporary
// file installed as the standard one, and the owner on whose behalf hot keys are
// registered (the hot keys in use come from hotKeysInUse). Hot keys must go first.
class QVFakeApplication final : public QVHotKeyDelegate
{
public:
    QVFakeApplication() { QVUserDefaults::setStandardUserDefaults(&defaults); }
    ~QVFakeApplication() override { QVUserDefaults::setStandardUserDefaults(nullptr); }

    void set(const QString &key, const QJsonValue &value) { defaults.setObject(value, key); }

    QList<QVHotKeyRef> hotKeys() const override { return hotKeysInUse ? hotKeysInUse() : QList<QVHotKeyRef>(); }
    quint32 hotKeySignature() const override { return QVHotKey::signature; }
    QVHotKeyService *hotKeyService() const override { return &platform; }
    QString identifierForHotKeyTextView(QObject *) override { return {}; }
    bool shouldSetHotKey(const QVHotKeyRef &, const QString &) override { return false; }
    QString titleOfControlHoldingHotKey(const QVHotKey &hotKey) override
    {
        return holderTitle ? holderTitle(hotKey) : QString();
    }

    QTemporaryDir directory;
    QVUserDefaults defaults { directory.filePath(QStringLiteral("settings.json")) };
    mutable QVFakePlatform platform;
    std::function<QList<QVHotKeyRef>()> hotKeysInUse;
    std::function<QString(const QVHotKey &)> holderTitle;
};
