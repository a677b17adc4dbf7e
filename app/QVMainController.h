#pragma once

#include "QVActionEngine.h"
#include "QVApplicationMode.h"
#include "QVContextMenuBuilder.h"
#include "QVCustomControlManager.h"
#include "QVHotKeyDelegate.h"
#include "QVScreenOverlayPanelDelegate.h"
#include "QVScreenSectionPresenter.h"
#include "QVTimerDelayedPerformer.h"

#include <QObject>
#include <QTimer>

#include <memory>

class QAction;
class QVActionsPreferencesPage;
class QVAboutDialog;
class QVGeneralPreferencesPage;
class QVLoginItem;
class QVPlatform;
class QVPreferencesWindow;
class QVSparkleWrapper;
class QVStatusItem;
class QVTaskbarPresence;
class QVUserDefaults;

// The application's controller: it stands for the application in hot key
// registration, owns the list of controls and hands actions to the engine.
class QVMainController final : public QObject,
                               public QVHotKeyDelegate,
                               public QVScreenSectionPresenter,
                               public QVScreenOverlayPanelDelegate
{
    Q_OBJECT

public:
    QVMainController(QVPlatform &platform, QVUserDefaults &defaults, QObject *parent = nullptr);
    ~QVMainController() override;

    // Puts the windows into the task bar in the mode that wants it.
    void applicationWillFinishLaunching();
    // Loads the controls and registers their hot keys, opens the settings unless
    // told not to, and installs the tray icon once the event loop runs.
    void applicationDidFinishLaunching();
    // Saves the controls; called once when the application quits.
    void applicationShouldTerminate();
    // Corvane was launched again: the settings come to the front on their last page.
    void applicationShouldHandleReopen();

    // The settings window, on the page named (null: the current one, "General" at first).
    void showPreferencesTab(const QString &identifier);
    void showPreferences();
    void updatePreferencesWindowFrame();
    void showHelp();
    void showAbout();
    // One of the General page's controls was changed by the user.
    void changeSetting(QObject *sender);
    void toggleDebugLogging();
    // Installs or removes the tray icon as the mode says.
    void updateStatusItem();
    bool performActionTriggeredByControl(
        QVCustomControlRepresentation *control, const QVEvent *event, bool isRepetition, bool *shouldRepeat);
    // The item's data names a control by its unique identifier.
    void performCustomControlActionForMenuItem(const QAction *item);
    // The event that performs (or releases) the control named from outside, by identifier
    // or title; null with the reason when nothing matches.
    QVEventRef performEventForControlNamed(const QString &name, bool release, QString *reason) const;
    // Identifier and title of every control that acts, in list order.
    QList<QStringList> performableControls() const;

    // Events no hot key claimed: keys and clicks for the overlay while it is up.
    void dispatchEventNormally(const QVEventRef &event);

    // QVScreenSectionPresenter
    bool isOverlayActive() const override;
    void performOverlayPanelAction() override;
    void activateOverlayWithFrame(const QVRect &displayFrame) override;
    QVScreenOverlayPanel *overlayPanel() const { return m_overlayPanel.get(); }

    // QVScreenOverlayPanelDelegate
    bool handleKeyDownEvent(const QVEvent &event, QVScreenOverlayPanel &panel) override;
    bool screenOverlayPanelShouldAutoDeactivate(QVScreenOverlayPanel &panel) override;

    QVCustomControlManager &customControlManager() { return *m_manager; }
    QVActionEngine &actionEngine() { return m_engine; }

    // QVHotKeyDelegate
    QList<QVHotKeyRef> hotKeys() const override;
    quint32 hotKeySignature() const override;
    QVHotKeyService *hotKeyService() const override;
    QString identifierForHotKeyTextView(QObject *textView) override;
    bool shouldSetHotKey(const QVHotKeyRef &hotKey, const QString &identifier) override;
    QString titleOfControlHoldingHotKey(const QVHotKey &hotKey) override;

private:
    QVPreferencesWindow &preferencesWindow();
    void refreshGeneralPage();
    QVContextMenuBuilder::Targets menuTargets();
    void logAction(const QVCustomControlRepresentation *control, const QVEvent *event, bool performed);
    void settingsChangedExternally();
    void registerHotKeysAgain();
    void moveOverlayToNextDisplay(QVScreenOverlayPanel &panel);

    QVPlatform &m_platform;
    QVUserDefaults &m_defaults;
    std::unique_ptr<QVCustomControlManager> m_manager;
    QVTimerDelayedPerformer m_clickTimer;
    QVActionEngine m_engine;
    std::unique_ptr<QVScreenOverlayPanel> m_overlayPanel; // made on first use, then kept
    bool m_accountsForCapsLock = false;

    QVTimerDelayedPerformer m_terminationTimer;
    std::unique_ptr<QVTaskbarPresence> m_taskbarPresence;
    QVApplicationMode m_mode;
    std::unique_ptr<QVLoginItem> m_loginItem;
#ifdef CORVANE_UPDATE_CHECKS
    std::unique_ptr<QVSparkleWrapper> m_updater;
#endif
    QVContextMenuBuilder m_menuBuilder;
    std::unique_ptr<QVStatusItem> m_statusItem;
    std::unique_ptr<QVPreferencesWindow> m_preferencesWindow; // made when first shown
    QVGeneralPreferencesPage *m_generalPage = nullptr; // owned by the window
    QVActionsPreferencesPage *m_actionsPage = nullptr; // owned by the window
    QTimer m_saveTimer; // edits are saved once they pause
    std::unique_ptr<QVAboutDialog> m_aboutDialog;
};
