#pragma once

#include "QVActionEngine.h"
#include "QVCustomControlManager.h"
#include "QVHotKeyDelegate.h"
#include "QVScreenOverlayPanelDelegate.h"
#include "QVScreenSectionPresenter.h"
#include "QVTimerDelayedPerformer.h"

#include <QObject>

#include <memory>

class QAction;
class QVPlatform;
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

    static QVMainController *defaultController();
    static void setDefaultController(QVMainController *controller);

    // Loads the controls and registers their hot keys.
    void applicationDidFinishLaunching();
    // Saves the controls; called once when the application quits.
    void applicationShouldTerminate();
    // Corvane was launched again: the settings come to the front on their last page.
    void applicationShouldHandleReopen();

    bool performActionTriggeredByControl(
        QVCustomControlRepresentation *control, const QVEvent *event, bool isRepetition, bool *shouldRepeat);
    // The item's data names a control by its unique identifier.
    void performCustomControlActionForMenuItem(const QAction *item);

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

private:
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
};
