#pragma once

#include "QVAppcast.h"

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUrl>
#include <functional>
#include <memory>

class QNetworkAccessManager;
class QVAppcastClient;
class QVUpdateDialog;
class QVUpdatesPage;
class QVUserDefaults;

// The update front end: "Check for Updates" for the menus, the automatic checks
// (at most once a day, only once the user has turned them on), the Updates page's
// controls, and the outcome of the last check, remembered across launches under
// "QVSparkleWrapper Status". It only ever reads the feed: Corvane never downloads
// or installs a new version itself, the user is sent to its download page.
class QVSparkleWrapper final : public QObject
{
    Q_OBJECT

public:
    QVSparkleWrapper(QVUserDefaults &defaults, const QString &applicationName, const QString &applicationVersion,
        QNetworkAccessManager *network = nullptr, QObject *parent = nullptr);
    ~QVSparkleWrapper() override;

    // "SUFeedURL" when it is set, else the address built in.
    QUrl feedURL() const;

    // Starts a check and shows its progress and verdict in the update dialog.
    void checkForUpdates();
    bool automaticallyChecksForUpdates() const;
    void toggleAutomaticChecking();
    // Opens the address in the sender's tool tip; beeps when there is none.
    void visitProductPage(QWidget *sender);

    QJsonObject status() const;
    // Records the outcome of a check: the version found, the empty string for none;
    // a null string removes the outcome but keeps the date.
    void setUpdateVersion(const QString &version);
    // Refreshes the bound page, then calls the frame callback.
    void updateControls();

    void updaterDidFinishLoadingAppcast(const QVAppcast &appcast);
    void updaterDidFindValidUpdate(const QVAppcastItem &item);
    void updaterDidNotFindUpdate();

    // Called at the end of updateControls: the page's height may have changed.
    void setUpdatePreferencesWindowFrame(std::function<void()> callback);
    // Gives the page's controls their actions; updateControls does nothing before.
    void bindPage(QVUpdatesPage *page);
    // Arms the automatic check for the time left until a day after the last one.
    void resetUpdateCycle();

    QVAppcastClient &appcastClient() { return *m_client; }
    QVUpdateDialog *updateDialog() const { return m_dialog.get(); }
    const QTimer &automaticCheckTimer() const { return m_automaticCheckTimer; }

private:
    void startCheck(bool userInitiated);
    void appcastLoaded(const QVAppcast &appcast);
    void checkFailed(const QString &message);
    void automaticCheckDue();
    QVUpdateDialog &dialog();
    void presentDialog();
    QUrl downloadPageFor(const QVAppcastItem &item) const;

    QVUserDefaults &m_defaults;
    QString m_applicationName;
    QString m_applicationVersion;
    QVAppcastClient *m_client;
    std::unique_ptr<QVUpdateDialog> m_dialog;
    QPointer<QVUpdatesPage> m_page;
    std::function<void()> m_updatePreferencesWindowFrame;
    QTimer m_fallbackTimer;
    QTimer m_automaticCheckTimer;
    bool m_userInitiated = false;
};
