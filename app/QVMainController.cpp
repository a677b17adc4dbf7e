#include "QVMainController.h"

#include "QVAboutDialog.h"
#include "QVActionsPreferencesPage.h"
#include "QVCustomControlEditor.h"
#include "QVGeneralPreferencesPage.h"
#include "QVHotKey.h"
#include "QVInstalledResources.h"
#include "QVLog.h"
#include "QVLoginItem.h"
#include "QVPlatform.h"
#include "QVPointerEvents.h"
#include "QVPreferencesWindow.h"
#include "QVScreenGeometry.h"
#include "QVScreenOverlayCommand.h"
#include "QVScreenOverlayPanel.h"
#include "QVSelfRestart.h"
#include "QVStatusItem.h"
#include "QVTaskbarPresence.h"
#include "QVUserDefaults.h"
#ifdef CORVANE_UPDATE_CHECKS
#include "QVSparkleWrapper.h"
#include "QVUpdatesPage.h"
#endif

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QMenu>
#include <QTimer>
#include <QUrl>

namespace
{
const QString capsLockKey = QStringLiteral("Hot Keys Account For Caps Lock Status");
const QString stealthModeKey = QStringLiteral("Stealth Mode");
const QString debugLogKey = QStringLiteral("QVDebugLog");
// Long enough that a run of clicks is one write, short enough that a crash loses nothing.
constexpr int saveDelayMilliseconds = 1000;

} // namespace

QVMainController::QVMainController(QVPlatform &platform, QVUserDefaults &defaults, QObject *parent)
    : QObject(parent)
    , m_platform(platform)
    , m_defaults(defaults)
    , m_manager(std::make_unique<QVCustomControlManager>(&defaults, this, [&platform] { platform.beep(); }))
    , m_engine(
          platform, platform, [this] { return m_manager->controls(); }, m_clickTimer)
    , m_accountsForCapsLock(defaults.boolForKey(capsLockKey))
    , m_taskbarPresence(std::make_unique<QVTaskbarPresence>(platform, [this] { return !m_mode.isDockless(); }))
    , m_mode(defaults, m_terminationTimer,
          QVApplicationMode::Actions {
              .preferencesWindowVisible = [this] { return m_preferencesWindow && m_preferencesWindow->isVisible(); },
              .transformToForegroundApplication = [this] { return m_taskbarPresence->apply(), true; },
              .bringPreferencesWindowForward =
                  [this] {
                      if (m_preferencesWindow)
                          m_platform.activateWindow(m_preferencesWindow->winId());
                  },
              .launchRestartHelper = [](QString *error) { return QVSelfRestart::launchRestartHelper(error); },
              .terminate = [] { QCoreApplication::quit(); },
              .beep = [&platform] { platform.beep(); },
          })
    , m_loginItem(std::make_unique<QVLoginItem>(QVLoginItem::forRunningBinary(defaults.filePath())))
#ifdef CORVANE_UPDATE_CHECKS
    , m_updater(std::make_unique<QVSparkleWrapper>(
          defaults, QCoreApplication::applicationName(), QCoreApplication::applicationVersion()))
#endif
    , m_menuBuilder(defaults, *m_manager, menuTargets())
    , m_statusItem(std::make_unique<QVStatusItem>(
          [this](QMenu &menu, bool alternate) { m_menuBuilder.populateContextMenu(menu, alternate); }))
{
    connect(&defaults, &QVUserDefaults::changedExternally, this, &QVMainController::settingsChangedExternally);
    m_engine.setScreenSectionPresenter(this);
    m_saveTimer.setSingleShot(true);
    m_saveTimer.setInterval(saveDelayMilliseconds);
    connect(&m_saveTimer, &QTimer::timeout, this, [this] { m_manager->save(); });
}

QVMainController::~QVMainController() = default;

QVContextMenuBuilder::Targets QVMainController::menuTargets()
{
    QVContextMenuBuilder::Targets targets;
    targets.showAbout = [this] { showAbout(); };
#ifdef CORVANE_UPDATE_CHECKS
    targets.checkForUpdates = [this] { m_updater->checkForUpdates(); };
#endif
    targets.showHelp = [this] { showHelp(); };
    targets.showPreferences = [this] { showPreferences(); };
    targets.toggleDebugLogging = [this] { toggleDebugLogging(); };
    targets.terminate = [] { QCoreApplication::quit(); };
    targets.performCustomControlActionForMenuItem
        = [this](QAction *item) { performCustomControlActionForMenuItem(item); };
    return targets;
}

void QVMainController::applicationWillFinishLaunching()
{
    m_mode.updateApplicationMode();
}

void QVMainController::applicationDidFinishLaunching()
{
    m_manager->loadControls();

    // A restart hands the page over once.
    const QString section = m_defaults.objectForKey(QVApplicationMode::preferencesSectionKey).toString();
    if (!section.isEmpty())
        m_defaults.removeObjectForKey(QVApplicationMode::preferencesSectionKey);
    if (!m_defaults.boolForKey(stealthModeKey) || !section.isEmpty())
        showPreferencesTab(section);
    // After launching: the tray may still be starting with the session.
    QTimer::singleShot(0, this, &QVMainController::updateStatusItem);
}

void QVMainController::updateStatusItem()
{
    m_statusItem->setInstalled(m_defaults.integerForKey(QVApplicationMode::settingsKey) == QVApplicationMode::TrayIcon);
}

QVPreferencesWindow &QVMainController::preferencesWindow()
{
    if (m_preferencesWindow)
        return *m_preferencesWindow;
    m_generalPage = new QVGeneralPreferencesPage;
    QWidget *updatesPage = nullptr;
#ifdef CORVANE_UPDATE_CHECKS
    auto *page = new QVUpdatesPage;
    updatesPage = page;
#endif
    m_actionsPage = new QVActionsPreferencesPage(*m_manager, [this] { m_platform.beep(); });
    m_preferencesWindow = std::make_unique<QVPreferencesWindow>(m_defaults, m_generalPage, m_actionsPage, updatesPage);
    m_actionsPage->setUpdatePreferencesWindowFrame([this] { updatePreferencesWindowFrame(); });
    connect(m_actionsPage, &QVActionsPreferencesPage::controlsEdited, &m_saveTimer, qOverload<>(&QTimer::start));
    connect(m_generalPage, &QVGeneralPreferencesPage::changeSetting, this, &QVMainController::changeSetting);
    connect(m_preferencesWindow.get(), &QVPreferencesWindow::helpRequested, this, &QVMainController::showHelp);
#ifdef CORVANE_UPDATE_CHECKS
    // Bound once the window exists: the page's first refresh fits the window's height.
    m_updater->setUpdatePreferencesWindowFrame([this] { updatePreferencesWindowFrame(); });
    m_updater->bindPage(page);
#endif
    return *m_preferencesWindow;
}

// The page shows what is stored now: the file may have been edited since it last showed.
void QVMainController::refreshGeneralPage()
{
    m_generalPage->loginItemSwitch()->setChecked(m_loginItem->isLoginItem());
    const qint64 mode = m_mode.clampedStoredMode();
    m_generalPage->setApplicationMode(mode);
    m_generalPage->setExplanationVisible(mode == QVApplicationMode::Faceless);
    m_generalPage->stealthModeSwitch()->setChecked(!m_defaults.boolForKey(stealthModeKey));
}

void QVMainController::showPreferencesTab(const QString &identifier)
{
    QVPreferencesWindow &window = preferencesWindow();
    if (!window.isVisible())
        refreshGeneralPage();
    window.showPreferencesTab(identifier);
    m_platform.activateWindow(window.winId());
}

void QVMainController::showPreferences()
{
    showPreferencesTab({});
}

void QVMainController::updatePreferencesWindowFrame()
{
    if (m_preferencesWindow)
        m_preferencesWindow->updatePreferencesWindowFrame();
}

void QVMainController::showHelp()
{
    const QString page = QVInstalledResources::helpPagePath();
    if (page.isEmpty() || !QDesktopServices::openUrl(QUrl::fromLocalFile(page))) {
        QVLog(QStringLiteral("cannot open the help page %1")
                  .arg(page.isEmpty() ? QStringLiteral("(not installed)") : page));
        m_platform.beep();
    }
}

void QVMainController::showAbout()
{
    if (!m_aboutDialog)
        m_aboutDialog = std::make_unique<QVAboutDialog>();
    m_aboutDialog->showAbout();
    m_platform.activateWindow(m_aboutDialog->winId());
}

void QVMainController::changeSetting(QObject *sender)
{
    if (!m_generalPage)
        return;
    if (sender == m_generalPage->loginItemSwitch()) {
        if (!m_loginItem->setLoginItem(m_generalPage->loginItemSwitch()->isChecked()))
            QVLog(QStringLiteral("cannot change the start at login entry in %1")
                      .arg(QVLoginItem::defaultAutostartDirectory()));
        m_generalPage->loginItemSwitch()->setChecked(m_loginItem->isLoginItem());
    } else if (sender == m_generalPage->stealthModeSwitch()) {
        m_defaults.setObject(!m_generalPage->stealthModeSwitch()->isChecked(), stealthModeKey);
    } else if (sender == m_generalPage->applicationModeSelector()) {
        const qint64 mode = m_generalPage->applicationModeSelector()->currentData().toLongLong();
        if (!m_mode.changeApplicationMode(mode) || m_mode.isScheduledToQuit())
            return;
        updateStatusItem();
        m_generalPage->setExplanationVisible(mode == QVApplicationMode::Faceless);
        updatePreferencesWindowFrame();
    }
}

void QVMainController::toggleDebugLogging()
{
    const bool enabled = !m_defaults.boolForKey(debugLogKey);
    m_defaults.setObject(enabled, debugLogKey);
    QVLog(enabled ? QStringLiteral("debug logging on") : QStringLiteral("debug logging off"));
}

void QVMainController::applicationShouldTerminate()
{
    m_engine.finishPendingClick(); // no button left down behind us

    // An outside edit still settling is taken in, and an unparsable file kept aside, before the list goes out.
    m_defaults.prepareForFinalWrite();
    m_saveTimer.stop();
    m_manager->save();
    m_statusItem->setInstalled(false);
}

void QVMainController::applicationShouldHandleReopen()
{
    QVLog(QStringLiteral("launched again: showing the settings"));
    showPreferencesTab({});
}

bool QVMainController::performActionTriggeredByControl(
    QVCustomControlRepresentation *control, const QVEvent *event, bool isRepetition, bool *shouldRepeat)
{
    const bool performed = m_engine.performActionTriggeredByControl(control, event, isRepetition, shouldRepeat);
    if (QVDebugLogEnabled() && !isRepetition)
        logAction(control, event, performed);
    return performed;
}

void QVMainController::logAction(const QVCustomControlRepresentation *control, const QVEvent *event, bool performed)
{
    const QString source = event ? QStringLiteral("hot key (key code %1, modifier flags 0x%2)")
                                       .arg(event->keyCode)
                                       .arg(event->modifierFlags, 0, 16)
                                 : QStringLiteral("menu item");
    const QString outcome = !performed ? QStringLiteral("claimed by no control")
        : control ? QStringLiteral("performed \"%1\"").arg(control->displayTitleWithSuffixes(nullptr))
                  : QStringLiteral("performed");
    const QVPoint pointer = m_platform.mouseLocation();
    QVLog(QStringLiteral("%1: %2, pointer now at %3,%4").arg(source, outcome).arg(pointer.x).arg(pointer.y));
}

void QVMainController::performCustomControlActionForMenuItem(const QAction *item)
{
    const QString identifier = item ? item->data().toString() : QString();
    const QVCustomControlRef control
        = identifier.isEmpty() ? nullptr : m_manager->controlWithUniqueIdentifier(identifier);
    if (!control || !performActionTriggeredByControl(control.get(), nullptr, false, nullptr))
        m_platform.beep();
}

QVEventRef QVMainController::performEventForControlNamed(const QString &name, bool release, QString *reason) const
{
    const QVCustomControlRef control = m_manager->controlForPerformName(name, reason);
    if (!control)
        return nullptr;
    // As a hot key's press and release: a held Move repeats until the release comes.
    auto event = std::make_shared<QVEvent>();
    event->type = QVEvent::SystemDefined;
    event->subtype = release ? QVEvent::HotKeyReleased : QVEvent::HotKeyPressed;
    event->performedControl = control->uniqueIdentifier();
    return event;
}

QList<QStringList> QVMainController::performableControls() const
{
    QList<QStringList> controls;
    for (const QVCustomControlRef &control : m_manager->controls())
        if (control->action() > 0)
            controls.append({ control->uniqueIdentifier(), control->displayTitleWithSuffixes(nullptr) });
    return controls;
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

QString QVMainController::titleOfControlHoldingHotKey(const QVHotKey &hotKey)
{
    for (const QVCustomControlRef &control : m_manager->controls())
        if (const QVHotKeyRef held = control->hotKey(); held && held->isRegistered() && held->isEqualToHotKey(hotKey))
            return control->displayTitleWithSuffixes(nullptr);
    return {};
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
    if (m_manager->reloadControlsIfChanged()) {
        QVLog(QStringLiteral("custom controls reloaded from %1: %2 controls")
                  .arg(m_defaults.filePath())
                  .arg(m_manager->controls().size()));
        if (m_actionsPage)
            m_actionsPage->editor().reloadRows();
    } else if (capsLockRuleChanged)
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
    if (!(target == snapshot.mouseLocation) || m_platform.isMouseLocationApproximate())
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
    case QVScreenOverlayCommand::Ignore: break;
    case QVScreenOverlayCommand::OpenPreferences:
        // The overlay gives the keyboard back first: the settings window takes it next.
        panel.setActive(false);
        showPreferencesTab({});
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
