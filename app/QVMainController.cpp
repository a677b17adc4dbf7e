#include "QVMainController.h"

#include "QVHotKey.h"
#include "QVLog.h"
#include "QVPlatform.h"
#include "QVUserDefaults.h"

#include <QAction>
#include <QThread>

namespace {
QVMainController *sharedController = nullptr;
const QString capsLockKey = QStringLiteral("Hot Keys Account For Caps Lock Status");
} // namespace

QVMainController::QVMainController(QVPlatform &platform, QVUserDefaults &defaults, QObject *parent)
    : QObject(parent),
      m_platform(platform),
      m_defaults(defaults),
      m_manager(std::make_unique<QVCustomControlManager>(&defaults, this, [&platform] { platform.beep(); })),
      m_engine(
          platform, platform, [this] { return m_manager->controls(); },
          [](int milliseconds) { QThread::msleep(static_cast<unsigned long>(milliseconds)); }),
      m_accountsForCapsLock(defaults.boolForKey(capsLockKey))
{
    connect(&defaults, &QVUserDefaults::changedExternally, this, &QVMainController::settingsChangedExternally);
}

QVMainController::~QVMainController()
{
    if (sharedController == this)
        sharedController = nullptr;
}

QVMainController *QVMainController::defaultController()
{
    return sharedController;
}

void QVMainController::setDefaultController(QVMainController *controller)
{
    sharedController = controller;
}

void QVMainController::applicationDidFinishLaunching()
{
    QVCustomControlManager::setDefaultManager(m_manager.get());
    m_manager->loadControls();
}

void QVMainController::applicationShouldTerminate()
{
    m_manager->save();
}

bool QVMainController::performActionTriggeredByControl(QVCustomControlRepresentation *control,
                                                       const QVEvent *event, bool isRepetition, bool *shouldRepeat)
{
    return m_engine.performActionTriggeredByControl(control, event, isRepetition, shouldRepeat);
}

void QVMainController::performCustomControlActionForMenuItem(const QAction *item)
{
    const QString identifier = item ? item->data().toString() : QString();
    const QVCustomControlRef control =
        identifier.isEmpty() ? nullptr : m_manager->controlWithUniqueIdentifier(identifier);
    if (!control || !performActionTriggeredByControl(control.get(), nullptr, false, nullptr))
        m_platform.beep();
}

QList<QVHotKeyRef> QVMainController::hotKeys() const
{
    QList<QVHotKeyRef> hotKeys;
    for (const QVCustomControlRef &control : m_manager->controls())
        if (const QVHotKeyRef hotKey = control->hotKey())
            hotKeys.append(hotKey);
    return hotKeys;
}

quint32 QVMainController::hotKeySignature() const
{
    return QVHotKey::signature;
}

QVHotKeyService *QVMainController::hotKeyService() const
{
    return &m_platform;
}

QString QVMainController::identifierForHotKeyTextView(QObject *textView)
{
    Q_UNUSED(textView);
    return {};
}

bool QVMainController::shouldSetHotKey(const QVHotKeyRef &hotKey, const QString &identifier)
{
    Q_UNUSED(hotKey);
    Q_UNUSED(identifier);
    return false; // no field records hot keys for the application itself
}

void QVMainController::settingsChangedExternally()
{
    const bool accountsForCapsLock = m_defaults.boolForKey(capsLockKey);
    if (accountsForCapsLock == m_accountsForCapsLock)
        return;
    m_accountsForCapsLock = accountsForCapsLock;
    QVLog(accountsForCapsLock ? QStringLiteral("hot keys now take Caps Lock into account")
                              : QStringLiteral("hot keys now ignore Caps Lock"));
    // The Caps Lock rule decides which lock states are grabbed.
    registerHotKeysAgain();
}

void QVMainController::registerHotKeysAgain()
{
    for (const QVCustomControlRef &control : m_manager->controls()) {
        const QVHotKeyRef hotKey = control->hotKey();
        QString reason;
        if (hotKey && !hotKey->registerForDelegate(control.get(), false, &reason))
            QVLog(QStringLiteral("hot key %1 of \"%2\" cannot be registered again: %3")
                      .arg(hotKey->visualRepresentation(), control->displayTitleWithSuffixes(nullptr), reason));
    }
}
