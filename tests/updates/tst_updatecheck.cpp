#include "QVAppcastClient.h"
#include "QVFeedServer.h"
#include "QVLogCapture.h"
#include "QVOutsideWriter.h"
#include "QVReleaseNotesBrowser.h"
#include "QVSparkleWrapper.h"
#include "QVUpdateDialog.h"
#include "QVUpdatesPage.h"
#include "QVUserDefaults.h"

#include <QApplication>
#include <QCheckBox>
#include <QDateTime>
#include <QDesktopServices>
#include <QLabel>
#include <QNetworkAccessManager>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QTemporaryDir>
#include <QTest>

namespace
{

const QString version = QStringLiteral("0.1.0");
const QString feedKey = QStringLiteral("SUFeedURL");
const QString automaticKey = QStringLiteral("SUEnableAutomaticChecks");
const QString lastCheckKey = QStringLiteral("SULastCheckTime");
const QString skippedKey = QStringLiteral("SUSkippedVersion");
const QString statusKey = QStringLiteral("QVSparkleWrapper Status");

QByteArray feed(const QByteArray &shortVersion, const QByteArray &notes = "<p>Faster and smaller.</p>",
    const QByteArray &link = "https://corvane.org/download/")
{
    return "<?xml version=\"1.0\"?><rss version=\"2.0\" "
           "xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel><title>Corvane</title>"
           "<item><title>Corvane "
        + shortVersion + "</title><link>" + link + "</link><description><![CDATA[" + notes
        + "]]></description><enclosure url=\"https://corvane.org/c.deb\" sparkle:version=\"" + shortVersion
        + "\"/></item></channel></rss>";
}

QVFeedServer::Route answer(const QByteArray &body, const QByteArray &status = "200 OK")
{
    QVFeedServer::Route route;
    route.status = status;
    route.body = body;
    return route;
}

QVFeedServer::Route redirect(const QByteArray &location)
{
    QVFeedServer::Route route;
    route.status = "302 Found";
    route.location = location;
    return route;
}

QVFeedServer::Route ofKind(QVFeedServer::Route::Kind kind)
{
    QVFeedServer::Route route;
    route.kind = kind;
    return route;
}

class CountingNetworkAccessManager final : public QNetworkAccessManager
{
public:
    int requests = 0;

protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &request, QIODevice *data) override
    {
        ++requests;
        return QNetworkAccessManager::createRequest(operation, request, data);
    }
};

} // namespace

// Receives what QDesktopServices would hand to the browser.
class QVUrlRecorder final : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> urls;

public Q_SLOTS:
    void open(const QUrl &url) { urls.append(url); }
};

class tst_UpdateCheck final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void checkOutcomes_data();
    void checkOutcomes();
    void releaseNotesLoadNothing();
    void skipAndRemind();
    void downloadAndProductPages();
    void cancelEndsTheCheck();
    void automaticCheckScheduling();
    void pageFollowsTheStatus();
    void everyControlHasAnAccessibleName();

private:
    void makeWrapper();
    void checkFeed(const QByteArray &path, bool automatic = false);
    void waitForVerdict();
    QVUpdateDialog *dialog() const { return m_wrapper->updateDialog(); }
    QString dialogText() const;

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<QVUserDefaults> m_defaults;
    std::unique_ptr<QVFeedServer> m_server;
    std::unique_ptr<CountingNetworkAccessManager> m_network;
    std::unique_ptr<QVSparkleWrapper> m_wrapper;
    QVUrlRecorder m_opened;
};

void tst_UpdateCheck::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    m_defaults = std::make_unique<QVUserDefaults>(m_directory->filePath(QStringLiteral("settings.json")));
    m_server = std::make_unique<QVFeedServer>();
    m_server->setRoute("/newer", answer(feed("2.1")));
    m_server->setRoute("/same", answer(feed("0.1.0")));
    m_server->setRoute("/malformed", answer(feed("2.1").replace("</item>", "")));
    m_server->setRoute("/slow", ofKind(QVFeedServer::Route::Stall));
    m_server->setRoute("/huge", ofKind(QVFeedServer::Route::Endless));
    m_server->setRoute("/broken", answer("down for maintenance", "500 Internal Server Error"));
    m_server->setRoute("/redirect-http", redirect("http://updates.corvane.invalid/appcast.xml"));
    m_server->setRoute("/loop", redirect("/loop"));
    m_server->setRoute("/moved", redirect("/newer"));
    m_network = std::make_unique<CountingNetworkAccessManager>();
    makeWrapper();
    m_opened.urls.clear();
    QDesktopServices::setUrlHandler(QStringLiteral("https"), &m_opened, "open");
    QDesktopServices::setUrlHandler(QStringLiteral("http"), &m_opened, "open");
}

void tst_UpdateCheck::cleanup()
{
    QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
    QDesktopServices::unsetUrlHandler(QStringLiteral("http"));
    m_wrapper.reset();
    m_network.reset();
    m_server.reset();
    m_defaults.reset();
    m_directory.reset();
}

void tst_UpdateCheck::makeWrapper()
{
    m_wrapper.reset();
    m_wrapper = std::make_unique<QVSparkleWrapper>(*m_defaults, QStringLiteral("Corvane"), version, m_network.get());
    m_wrapper->appcastClient().setTimeout(std::chrono::milliseconds(700));
    m_wrapper->appcastClient().setMaximumSize(64 * 1024);
}

void tst_UpdateCheck::checkFeed(const QByteArray &path, bool automatic)
{
    const QString address = path.startsWith('/') ? m_server->url(path).toString() : QString::fromLatin1(path);
    m_defaults->setObject(address, feedKey);
    if (!automatic) {
        m_wrapper->checkForUpdates();
        return;
    }
    m_defaults->setObject(true, automaticKey);
    m_wrapper->resetUpdateCycle();
    QVERIFY(m_wrapper->automaticCheckTimer().isActive());
    // The check that the armed timer would start, without waiting for it.
    QMetaObject::invokeMethod(const_cast<QTimer *>(&m_wrapper->automaticCheckTimer()), "timeout");
}

void tst_UpdateCheck::waitForVerdict()
{
    QTRY_VERIFY_WITH_TIMEOUT(!m_wrapper->appcastClient().isFetching(), 10000);
    QCoreApplication::processEvents();
}

QString tst_UpdateCheck::dialogText() const
{
    return dialog()->headline()->text() + u'\n' + dialog()->detail()->text();
}

void tst_UpdateCheck::checkOutcomes_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QVUpdateDialog::State>("state");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QJsonValue>("updateVersion");
    QTest::addColumn<int>("serverRequests");
    const QJsonValue none(QJsonValue::Undefined);
    const auto error = QVUpdateDialog::State::Error;
    QTest::newRow("newer") << QByteArray("/newer") << QVUpdateDialog::State::UpdateAvailable
                           << QStringLiteral("Corvane 2.1 is now available—you have 0.1.0.")
                           << QJsonValue(QStringLiteral("2.1")) << 1;
    QTest::newRow("same") << QByteArray("/same") << QVUpdateDialog::State::UpToDate
                          << QStringLiteral("Corvane 0.1.0 is the newest version available.") << QJsonValue(QString())
                          << 1;
    QTest::newRow("redirect on loopback") << QByteArray("/moved") << QVUpdateDialog::State::UpdateAvailable
                                          << QStringLiteral("Corvane 2.1") << QJsonValue(QStringLiteral("2.1")) << 2;
    QTest::newRow("malformed") << QByteArray("/malformed") << error << QStringLiteral("damaged") << none << 1;
    QTest::newRow("not found") << QByteArray("/missing") << error
                               << QStringLiteral("not found on the server (HTTP 404)") << none << 1;
    QTest::newRow("server error") << QByteArray("/broken") << error
                                  << QStringLiteral("(HTTP 500 Internal Server Error)") << none << 1;
    QTest::newRow("slow") << QByteArray("/slow") << error << QStringLiteral("did not answer in time") << none << 1;
    QTest::newRow("huge") << QByteArray("/huge") << error << QStringLiteral("larger than 64 KiB") << none << 1;
    QTest::newRow("redirect to plain http")
        << QByteArray("/redirect-http") << error
        << QStringLiteral("redirects to http://updates.corvane.invalid/appcast.xml, which is not a secure") << none
        << 1;
    QTest::newRow("redirect loop") << QByteArray("/loop") << error << QStringLiteral("redirects too often") << none
                                   << 6;
    QTest::newRow("plain http feed") << QByteArray("http://updates.corvane.invalid/appcast.xml") << error
                                     << QStringLiteral("is not a secure (https) address, so it was not contacted")
                                     << none << 0;
    QTest::newRow("no address") << QByteArray("not an address") << error << QStringLiteral("not contacted") << none
                                << 0;
}

void tst_UpdateCheck::checkOutcomes()
{
    QFETCH(QByteArray, path);
    QFETCH(QVUpdateDialog::State, state);
    QFETCH(QString, text);
    QFETCH(QJsonValue, updateVersion);
    QFETCH(int, serverRequests);

    checkFeed(path);
    QVERIFY(dialog()->isVisible());
    waitForVerdict();
    QCOMPARE(dialog()->state(), state);
    QVERIFY2(dialogText().contains(text), qPrintable(dialogText()));
    QVERIFY(dialog()->isVisible());
    QCOMPARE(m_wrapper->status().value(QStringLiteral("Update Version")), updateVersion);
    // Written to the file, for the next launch.
    QCOMPARE(QVUserDefaults(m_defaults->filePath()).objectForKey(statusKey).toObject(), m_wrapper->status());
    // Every request the client makes, and only those, reach the server: a refused address is never asked.
    QCOMPARE(m_server->requests().size(), serverRequests);
    QCOMPARE(m_network->requests, serverRequests);
    for (const QByteArray &userAgent : m_server->userAgents())
        QCOMPARE(userAgent, QByteArray("Corvane/0.1.0"));
    // Nothing more arrives after the verdict.
    const QString verdict = dialogText();
    QTest::qWait(50);
    QCOMPARE(dialogText(), verdict);
}

void tst_UpdateCheck::releaseNotesLoadNothing()
{
    const QByteArray image = "http://127.0.0.1:" + QByteArray::number(m_server->port()) + "/x.png";
    m_server->setRoute("/notes",
        answer(feed("2.1",
            "<p>Faster.</p><script>document.write('injected')</script><img src=\"" + image
                + "\"><link rel=\"stylesheet\" href=\"/style.css\"><img src=\"/local.png\"><script>unclosed")));
    checkFeed("/notes");
    waitForVerdict();
    QCOMPARE(dialog()->state(), QVUpdateDialog::State::UpdateAvailable);
    dialog()->releaseNotes()->grab(); // lays out and paints, which is when images are asked for
    QTest::qWait(100);
    QCOMPARE(m_server->requests(), QList<QByteArray>({ "/notes" }));
    const QString shown = dialog()->releaseNotes()->toPlainText();
    QVERIFY2(shown.contains(QStringLiteral("Faster.")), qPrintable(shown));
    QVERIFY2(
        !shown.contains(QStringLiteral("injected")) && !shown.contains(QStringLiteral("unclosed")), qPrintable(shown));
    QVERIFY(dialog()
                ->releaseNotes()
                ->loadResource(QTextDocument::ImageResource, QUrl(QString::fromLatin1(image)))
                .isNull());
    QCOMPARE(dialog()->releaseNotes()->loadResource(QTextDocument::ImageResource, QUrl(QStringLiteral("data:,a%20b"))),
        QVariant(QByteArray("a b")));
}

void tst_UpdateCheck::skipAndRemind()
{
    QVLogCapture log;
    checkFeed("/newer", true);
    waitForVerdict();
    QVERIFY(dialog() && dialog()->isVisible());
    QCOMPARE(dialog()->state(), QVUpdateDialog::State::UpdateAvailable);
    QTest::mouseClick(dialog()->button(QStringLiteral("Skip This Version")), Qt::LeftButton);
    QVERIFY(!dialog()->isVisible());
    QCOMPARE(m_defaults->objectForKey(skippedKey), QJsonValue(QStringLiteral("2.1")));

    // Automatic checks keep quiet about the skipped version; asking still shows it.
    checkFeed("/newer", true);
    waitForVerdict();
    QVERIFY(!dialog()->isVisible());
    m_wrapper->checkForUpdates();
    waitForVerdict();
    QVERIFY(dialog()->isVisible());
    QCOMPARE(dialog()->state(), QVUpdateDialog::State::UpdateAvailable);
    QTest::mouseClick(dialog()->button(QStringLiteral("Remind Me Later")), Qt::LeftButton);
    QVERIFY(!dialog()->isVisible());
    QCOMPARE(m_defaults->objectForKey(skippedKey), QJsonValue(QStringLiteral("2.1")));
    QVERIFY(m_opened.urls.isEmpty());

    // Automatic checks that find nothing, or fail, only write a log line.
    for (const QByteArray path : { "/same", "/missing" }) {
        checkFeed(path, true);
        waitForVerdict();
        QVERIFY(!dialog()->isVisible());
    }
    QCOMPARE(log.lines(QStringLiteral("automatic update check")).size(), 3);
}

void tst_UpdateCheck::downloadAndProductPages()
{
    m_server->setRoute("/nolink", answer(feed("2.1", "", "file:///etc/passwd")));
    checkFeed("/newer");
    waitForVerdict();
    QTest::mouseClick(dialog()->button(QStringLiteral("Download Page")), Qt::LeftButton);
    QVERIFY(!dialog()->isVisible());
    checkFeed("/nolink");
    waitForVerdict();
    QTest::mouseClick(dialog()->button(QStringLiteral("Download Page")), Qt::LeftButton);
    QVUpdatesPage page;
    const QUrl productPage(page.productPageButton()->toolTip());
    QCOMPARE(productPage, QUrl(QStringLiteral("https://corvane.org/")));
    QCOMPARE(m_opened.urls, QList<QUrl>({ QUrl(QStringLiteral("https://corvane.org/download/")), productPage }));

    m_opened.urls.clear();
    m_wrapper->bindPage(&page);
    QTest::mouseClick(page.productPageButton(), Qt::LeftButton);
    QLabel withoutAddress;
    m_wrapper->visitProductPage(&withoutAddress);
    withoutAddress.setToolTip(QStringLiteral("not an address"));
    m_wrapper->visitProductPage(&withoutAddress);
    QCOMPARE(m_opened.urls, QList<QUrl>({ productPage }));
}

void tst_UpdateCheck::cancelEndsTheCheck()
{
    m_wrapper->appcastClient().setTimeout(std::chrono::seconds(20));
    checkFeed("/slow");
    QTRY_COMPARE(m_server->requests().size(), 1);
    QCOMPARE(dialog()->state(), QVUpdateDialog::State::Checking);
    QTest::mouseClick(dialog()->button(QStringLiteral("Cancel")), Qt::LeftButton);
    QVERIFY(!dialog()->isVisible());
    QVERIFY(!m_wrapper->appcastClient().isFetching());

    // Escape while checking cancels too; a new check starts afresh.
    m_wrapper->checkForUpdates();
    QVERIFY(m_wrapper->appcastClient().isFetching());
    QTest::keyClick(dialog(), Qt::Key_Escape);
    QVERIFY(!m_wrapper->appcastClient().isFetching());
    QVERIFY(!m_wrapper->status().contains(QStringLiteral("Update Version")));
}

void tst_UpdateCheck::automaticCheckScheduling()
{
    const QTimer &timer = m_wrapper->automaticCheckTimer();
    m_defaults->setObject(QDateTime::currentSecsSinceEpoch() - 2 * 60 * 60, lastCheckKey);
    m_wrapper->resetUpdateCycle();
    QVERIFY(!timer.isActive());

    QVUpdatesPage page;
    m_wrapper->bindPage(&page);
    QVERIFY(!page.autoUpdateCheckingSwitch()->isChecked());
    QTest::mouseClick(page.autoUpdateCheckingSwitch(), Qt::LeftButton);
    QVERIFY(m_defaults->boolForKey(automaticKey));
    QVERIFY(timer.isActive());
    const qint64 twentyTwoHours = 22 * 60 * 60 * 1000;
    // Whole seconds, and a coarse timer may round up by one.
    QVERIFY2(timer.remainingTime() <= twentyTwoHours + 1000 && timer.remainingTime() > twentyTwoHours - 60 * 1000,
        qPrintable(QString::number(timer.remainingTime())));

    // A new launch arms the same timer from the stored settings.
    makeWrapper();
    QVERIFY(m_wrapper->automaticCheckTimer().isActive());
    QVERIFY(m_wrapper->automaticCheckTimer().remainingTime() <= twentyTwoHours + 1000);
    m_wrapper->bindPage(&page);
    QVERIFY(page.autoUpdateCheckingSwitch()->isChecked());
    QTest::mouseClick(page.autoUpdateCheckingSwitch(), Qt::LeftButton);
    QVERIFY(!m_defaults->boolForKey(automaticKey));
    QVERIFY(!m_wrapper->automaticCheckTimer().isActive());

    // Turned on in the settings file by hand, it takes effect as well.
    QVERIFY(QVOutsideWriter::write(m_defaults->filePath(), R"({"SUEnableAutomaticChecks": true})"));
    QTRY_VERIFY(m_wrapper->automaticCheckTimer().isActive());
    QVERIFY(page.autoUpdateCheckingSwitch()->isChecked());

    // A manual check starts the day afresh.
    checkFeed("/same");
    waitForVerdict();
    QVERIFY(m_wrapper->automaticCheckTimer().remainingTime() > 24 * 60 * 60 * 1000 - 60 * 1000);
}

void tst_UpdateCheck::pageFollowsTheStatus()
{
    m_defaults->setObject(m_server->url("/same").toString(), feedKey);
    QVUpdatesPage page;
    int frameUpdates = 0;
    m_wrapper->setUpdatePreferencesWindowFrame([&frameUpdates] { ++frameUpdates; });
    m_wrapper->bindPage(&page);
    page.show();
    QCOMPARE(frameUpdates, 1);
    QVERIFY(page.statusTextField()->isHidden() && page.statusDateTextField()->isHidden());
    const int emptyHeight = page.sizeHint().height();

    QTest::mouseClick(page.checkNowButton(), Qt::LeftButton);
    QVERIFY(dialog()->isVisible());
    waitForVerdict();
    QCOMPARE(page.statusTextField()->text(), QStringLiteral("Corvane is up to date"));
    QVERIFY(page.statusDateTextField()->text().startsWith(QStringLiteral("Last check: ")));
    QVERIFY(page.sizeHint().height() > emptyHeight);
    QVERIFY(frameUpdates > 1);

    // An outcome written to the settings file from outside shows as well.
    QVERIFY(QVOutsideWriter::write(m_defaults->filePath(),
        R"({"QVSparkleWrapper Status": {"Current Version": "0.1.0", "Update Version": "2.1", "Check Date": 5}})"));
    QTRY_COMPARE(page.statusTextField()->text(), QStringLiteral("Corvane 2.1 is now available"));
}

void tst_UpdateCheck::everyControlHasAnAccessibleName()
{
    QVUpdatesPage page;
    m_wrapper->checkForUpdates();
    for (const QWidget *root : { static_cast<QWidget *>(&page), static_cast<QWidget *>(dialog()) }) {
        for (const QWidget *child : root->findChildren<QWidget *>()) {
            const bool control = qobject_cast<const QAbstractButton *>(child) || qobject_cast<const QLabel *>(child)
                || qobject_cast<const QProgressBar *>(child) || qobject_cast<const QTextBrowser *>(child);
            QVERIFY2(!control || !child->accessibleName().isEmpty(), child->metaObject()->className());
        }
    }
}

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    tst_UpdateCheck test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_updatecheck.moc"
