#include "QVMainController.h"

#include "QVHotKey.h"
#include "QVLog.h"
#include "QVPlatform.h"
#include "QVPointerEvents.h"
#include "QVScreenGeometry.h"
#include "QVScreenOverlayCommand.h"
#include "QVScreenOverlayPanel.h"
#include "QVUserDefaults.h"

#include <QAction>

namespace
{
QVMainController *sharedController = nullptr;
const QString capsLockKey = QStringLiteral("Hot Keys Account For Caps Lock Status");
} // namespace

QVMainController::QVMainController(QVPlatform &platform, QVUserDefaults &defaults, QObject *parent)
    : QObject(parent)
    , m_platform(platform)
    , m_defaults(defaults)
    , m_manager(std::make_unique<QVCustomControlManager>(&defaults, this, [&platform] { platform.beep(); }))
    , m_engine(
          platform, platform, [this] { return m_manager->controls(); }, m_clickTimer)
    , m_accountsForCapsLock(defaults.boolForKey(capsLockKey))
{
    connect(&defaults, &QVUserDefaults::changedExternally, this, &QVMainController::settingsChangedExternally);
    m_engine.setScreenSectionPresenter(this);
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
    m_engine.finishPendingClick(); // no button left down behind us

    // An outside edit still settling is taken in, and an unparsable file kept aside, before the list goes out.
    m_defaults.prepareForFinalWrite();
    m_manager->save();
}

void QVMainController::applicationShouldHandleReopen()
{
    QVLog(QStringLiteral("launched again: showing the settings"));
}

bool QVMainController::performActionTriggeredByControl(
    QVCustomControlRepresentation *control, const QVEvent *event, bool isRepetition, bool *shouldRepeat)
{
    return m_engine.performActionTriggeredByControl(control, event, isRepetition, shouldRepeat);
}

void QVMainController::performCustomControlActionForMenuItem(const QAction *item)
{
    const QString identifier = item ? item->data().toString() : QString();
    const QVCustomControlRef control
        = identifier.isEmpty() ? nullptr : m_manager->controlWithUniqueIdentifier(identifier);
    if (!control || !performActionTriggeredByControl(control.get(), nullptr, false, nullptr))
        m_platform.beep();
}

QList<QVHotKeyRef> QVMainController::hotKeys() const
{
    QList<QVHotKeyRef> hotKeys;
    for (const QVCustomControlRef &control : m_manager->controls())
        if (const QVHotKeyRef hotKey = control->hotKey(); hotKey && hotKey->isRegistered())
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
    const bool capsLockRuleChanged = accountsForCapsLock != m_accountsForCapsLock;
    if (capsLockRuleChanged) {
        m_accountsForCapsLock = accountsForCapsLock;
        QVLog(accountsForCapsLock ? QStringLiteral("hot keys now take Caps Lock into account")
                                  : QStringLiteral("hot keys now ignore Caps Lock"));
    }
    // A rebuilt list registers under the current rule; otherwise the rule decides
    // which lock states are grabbed, so the hot keys are registered again.
    if (m_manager->reloadControlsIfChanged())
        QVLog(QStringLiteral("custom controls reloaded from %1: %2 controls")
                  .arg(m_defaults.filePath())
                  .arg(m_manager->controls().size()));
    else if (capsLockRuleChanged)
        registerHotKeysAgain();
}

void QVMainController::registerHotKeysAgain()
{
    m_manager->registerHotKeys();
}

void QVMainController::dispatchEventNormally(const QVEventRef &event)
{
    // A grabbed key no control claims belongs to no one else: only the overlay takes it.
    if (m_overlayPanel)
        m_overlayPanel->sendEvent(event);
}

bool QVMainController::isOverlayActive() const
{
    return m_overlayPanel && m_overlayPanel->active();
}

void QVMainController::performOverlayPanelAction()
{
    if (!m_overlayPanel)
        return;
    const QVDisplayService::Snapshot snapshot = m_platform.displaysAndMouseLocation();
    const QVPoint target = QVPointConfinedToRect(m_overlayPanel->frame(), m_overlayPanel->focusPoint());
    if (!(target == snapshot.mouseLocation))
        QVPostMouseMovedEvent(m_platform, true, target, snapshot.displays);
    m_overlayPanel->setActive(false);
}

void QVMainController::activateOverlayWithFrame(const QVRect &displayFrame)
{
    if (!m_overlayPanel) {
        m_overlayPanel = std::make_unique<QVScreenOverlayPanel>(m_platform, displayFrame);
        m_overlayPanel->setDelegate(this);
    } else {
        m_overlayPanel->setFrame(displayFrame);
    }
    m_overlayPanel->setActive(true);
}

bool QVMainController::handleKeyDownEvent(const QVEvent &event, QVScreenOverlayPanel &panel)
{
    if (!panel.active())
        return false;
    const QVScreenOverlayCommand command = QVScreenOverlayCommand::forKeyDown(event);
    switch (command.kind) {
    case QVScreenOverlayCommand::Ignore:
    case QVScreenOverlayCommand::OpenPreferences: // no settings window yet
        break;
    case QVScreenOverlayCommand::Perform: performOverlayPanelAction(); break;
    case QVScreenOverlayCommand::NextDisplay: moveOverlayToNextDisplay(panel); break;
    case QVScreenOverlayCommand::RemoveLastStep: panel.removeLastStep(); break;
    case QVScreenOverlayCommand::AddStep: panel.addStep(command.position); break;
    case QVScreenOverlayCommand::Close: panel.setActive(false); break;
    }
    return true;
}

bool QVMainController::screenOverlayPanelShouldAutoDeactivate(QVScreenOverlayPanel &panel)
{
    Q_UNUSED(panel);
    return true;
}

void QVMainController::moveOverlayToNextDisplay(QVScreenOverlayPanel &panel)
{
    const QVDisplayList displays = m_platform.displays();
    const QVDisplay *current = screenAtPosition(QVPosition::None, panel.frame().center(), displays);
    // The steps are kept: the same sections apply to the next display.
    if (const QVDisplay *next = screenAtRelativePosition(current, QVPosition::Right, true, displays))
        panel.setFrame(next->frame);
}
