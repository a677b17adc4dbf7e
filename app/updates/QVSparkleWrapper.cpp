#include "QVSparkleWrapper.h"

#include "QVAppcastClient.h"
#include "QVLog.h"
#include "QVUpdateDialog.h"
#include "QVUpdateStatusText.h"
#include "QVUpdatesPage.h"
#include "QVUserDefaults.h"

#include <QApplication>
#include <QCheckBox>
#include <QDateTime>
#include <QDesktopServices>
#include <QPushButton>

namespace
{

const QString statusKey = QStringLiteral("QVSparkleWrapper Status");
const QString automaticChecksKey = QStringLiteral("SUEnableAutomaticChecks");
const QString feedUrlKey = QStringLiteral("SUFeedURL");
const QString lastCheckTimeKey = QStringLiteral("SULastCheckTime");
const QString skippedVersionKey = QStringLiteral("SUSkippedVersion");

constexpr qint64 checkInterval = 24 * 60 * 60; // seconds
// An overdue check waits a little, so that it neither competes with the start nor
// runs before the network is up after a login.
constexpr qint64 overdueCheckDelay = 10; // seconds

qint64 now()
{
    return QDateTime::currentSecsSinceEpoch();
}

} // namespace

QVSparkleWrapper::QVSparkleWrapper(QVUserDefaults &defaults, const QString &applicationName,
    const QString &applicationVersion, QNetworkAccessManager *network, QObject *parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_applicationName(applicationName)
    , m_applicationVersion(applicationVersion)
    , m_client(new QVAppcastClient(network, this))
{
    m_client->setUserAgent(QStringLiteral("%1/%2").arg(applicationName, applicationVersion).toUtf8());
    connect(m_client, &QVAppcastClient::finished, this, &QVSparkleWrapper::appcastLoaded);
    connect(m_client, &QVAppcastClient::failed, this, &QVSparkleWrapper::checkFailed);
    m_fallbackTimer.setSingleShot(true);
    m_fallbackTimer.setInterval(0);
    connect(&m_fallbackTimer, &QTimer::timeout, this, &QVSparkleWrapper::updaterDidNotFindUpdate);
    m_automaticCheckTimer.setSingleShot(true);
    m_automaticCheckTimer.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_automaticCheckTimer, &QTimer::timeout, this, &QVSparkleWrapper::automaticCheckDue);
    // The switch may have been edited in the settings file.
    connect(&m_defaults, &QVUserDefaults::changedExternally, this, [this] {
        resetUpdateCycle();
        updateControls();
    });
    resetUpdateCycle();
}

QVSparkleWrapper::~QVSparkleWrapper() = default;

QUrl QVSparkleWrapper::feedURL() const
{
    const QString stored = m_defaults.objectForKey(feedUrlKey).toString().trimmed();
    return QUrl(stored.isEmpty() ? QStringLiteral(CORVANE_FEED_URL) : stored);
}

void QVSparkleWrapper::checkForUpdates()
{
    if (m_client->isFetching()) {
        // An automatic check under way becomes the user's: its verdict will show.
        if (!m_userInitiated) {
            m_userInitiated = true;
            dialog().showChecking();
        }
        presentDialog();
        return;
    }
    startCheck(true);
}

bool QVSparkleWrapper::automaticallyChecksForUpdates() const
{
    return m_defaults.boolForKey(automaticChecksKey);
}

void QVSparkleWrapper::toggleAutomaticChecking()
{
    m_defaults.setObject(!automaticallyChecksForUpdates(), automaticChecksKey);
    resetUpdateCycle();
    if (m_page)
        m_page->autoUpdateCheckingSwitch()->setChecked(automaticallyChecksForUpdates());
}

void QVSparkleWrapper::visitProductPage(QWidget *sender)
{
    const QString address = sender ? sender->toolTip().trimmed() : QString();
    const QUrl url(address, QUrl::StrictMode);
    if (address.isEmpty() || !url.isValid() || url.isRelative()) {
        QApplication::beep();
        return;
    }
    QDesktopServices::openUrl(url);
}

// Read from the settings each time, so that an outside edit of the file is seen.
QJsonObject QVSparkleWrapper::status() const
{
    return m_defaults.objectForKey(statusKey).toObject();
}

void QVSparkleWrapper::setUpdateVersion(const QString &version)
{
    m_fallbackTimer.stop();
    QJsonObject status = this->status();
    if (!m_applicationVersion.isEmpty()) {
        status.insert(QVUpdateStatusText::currentVersionKey, m_applicationVersion);
        if (!version.isNull()) {
            status.insert(QVUpdateStatusText::updateVersionKey, version);
            status.insert(QVUpdateStatusText::checkDateKey, now());
        } else
            status.remove(QVUpdateStatusText::updateVersionKey);
    } else
        status.remove(QVUpdateStatusText::currentVersionKey);
    m_defaults.setObject(status, statusKey);
    updateControls();
}

void QVSparkleWrapper::updateControls()
{
    if (!m_page)
        return;
    m_page->autoUpdateCheckingSwitch()->setChecked(automaticallyChecksForUpdates());
    const QJsonObject status = this->status();
    m_page->setStatusLines(QVUpdateStatusText::statusLine(status, m_applicationName, m_applicationVersion),
        QVUpdateStatusText::dateLine(status, m_applicationVersion));
    if (m_updatePreferencesWindowFrame)
        m_updatePreferencesWindowFrame();
}

// A check whose verdict never comes still counts as one that found nothing.
void QVSparkleWrapper::updaterDidFinishLoadingAppcast(const QVAppcast &appcast)
{
    Q_UNUSED(appcast);
    m_fallbackTimer.start();
}

void QVSparkleWrapper::updaterDidFindValidUpdate(const QVAppcastItem &item)
{
    setUpdateVersion(item.displayVersionString);
}

void QVSparkleWrapper::updaterDidNotFindUpdate()
{
    setUpdateVersion(QLatin1String(""));
}

void QVSparkleWrapper::setUpdatePreferencesWindowFrame(std::function<void()> callback)
{
    m_updatePreferencesWindowFrame = std::move(callback);
}

void QVSparkleWrapper::bindPage(QVUpdatesPage *page)
{
    if (m_page)
        m_page->disconnect(this);
    m_page = page;
    if (!page)
        return;
    connect(page->autoUpdateCheckingSwitch(), &QCheckBox::clicked, this, &QVSparkleWrapper::toggleAutomaticChecking);
    connect(page->checkNowButton(), &QPushButton::clicked, this, &QVSparkleWrapper::checkForUpdates);
    connect(page->productPageButton(), &QPushButton::clicked, this,
        [this, button = page->productPageButton()] { visitProductPage(button); });
    updateControls();
}

// One single-shot timer at most, armed for the time left: nothing wakes while idle.
void QVSparkleWrapper::resetUpdateCycle()
{
    m_automaticCheckTimer.stop();
    if (!automaticallyChecksForUpdates())
        return;
    const qint64 remaining = m_defaults.integerForKey(lastCheckTimeKey) + checkInterval - now();
    // A last check in the future (the clock was set back) waits one interval at most.
    const qint64 delay = qBound(overdueCheckDelay, remaining, checkInterval);
    m_automaticCheckTimer.start(std::chrono::seconds(delay));
}

void QVSparkleWrapper::automaticCheckDue()
{
    if (!automaticallyChecksForUpdates())
        return;
    if (m_client->isFetching())
        resetUpdateCycle();
    else
        startCheck(false);
}

void QVSparkleWrapper::startCheck(bool userInitiated)
{
    m_userInitiated = userInitiated;
    if (userInitiated) {
        dialog().showChecking();
        presentDialog();
    }
    m_defaults.setObject(now(), lastCheckTimeKey);
    resetUpdateCycle();
    m_client->fetch(feedURL());
}

void QVSparkleWrapper::appcastLoaded(const QVAppcast &appcast)
{
    updaterDidFinishLoadingAppcast(appcast);
    const std::optional<QVAppcastItem> item = appcast.bestItemNewerThan(m_applicationVersion);
    // "Skip This Version" quiets the automatic checks only; asking still shows it.
    const bool skipped
        = item && !m_userInitiated && item->versionString == m_defaults.objectForKey(skippedVersionKey).toString();
    if (item && !skipped) {
        updaterDidFindValidUpdate(*item);
        dialog().showUpdateAvailable(m_applicationName, m_applicationVersion, *item, downloadPageFor(*item));
        presentDialog();
        return;
    }
    updaterDidNotFindUpdate();
    if (m_userInitiated)
        dialog().showUpToDate(m_applicationName, m_applicationVersion);
    else
        QVLog(QStringLiteral("automatic update check: no newer version than %1").arg(m_applicationVersion));
}

void QVSparkleWrapper::checkFailed(const QString &message)
{
    if (m_userInitiated)
        dialog().showError(message);
    else
        QVLog(QStringLiteral("automatic update check failed: %1").arg(message));
}

QVUpdateDialog &QVSparkleWrapper::dialog()
{
    if (!m_dialog) {
        m_dialog = std::make_unique<QVUpdateDialog>();
        connect(m_dialog.get(), &QVUpdateDialog::checkCancelled, m_client, &QVAppcastClient::cancel);
        connect(m_dialog.get(), &QVUpdateDialog::versionSkipped, this,
            [this](const QString &version) { m_defaults.setObject(version, skippedVersionKey); });
    }
    return *m_dialog;
}

void QVSparkleWrapper::presentDialog()
{
    m_dialog->show();
    m_dialog->raise();
    m_dialog->activateWindow();
}

// The feed's page for the release; without one (the feed keeps only web addresses), the product page.
QUrl QVSparkleWrapper::downloadPageFor(const QVAppcastItem &item) const
{
    return item.link.isEmpty() ? QUrl(QStringLiteral(CORVANE_PRODUCT_PAGE)) : item.link;
}
