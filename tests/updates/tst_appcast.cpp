#include "QVAppcast.h"
#include "QVSparkleWrapper.h"
#include "QVUpdateStatusText.h"
#include "QVUserDefaults.h"
#include "QVVersionComparator.h"

#include <QDateTime>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace
{

QByteArray feed(const QByteArray &items)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<rss version=\"2.0\" xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">\n"
           "<channel><title>Corvane</title>\n"
        + items + "</channel></rss>\n";
}

QByteArray item(const QByteArray &version, const QByteArray &shortVersion = {})
{
    QByteArray enclosure = "<enclosure url=\"https://corvane.org/corvane.deb\" sparkle:version=\"" + version + "\"";
    if (!shortVersion.isEmpty())
        enclosure += " sparkle:shortVersionString=\"" + shortVersion + "\"";
    return "<item><title>Corvane " + version + "</title>" + enclosure + "/></item>\n";
}

QJsonObject statusOf(const QString &current, const QJsonValue &update, qint64 date = 1299315000)
{
    return { { QStringLiteral("Current Version"), current }, { QStringLiteral("Update Version"), update },
        { QStringLiteral("Check Date"), date } };
}

} // namespace

class tst_Appcast final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void versionComparison_data();
    void versionComparison();
    void parsesAnItem();
    void versionOnTheItemWinsOverTheEnclosure();
    void picksTheNewestItem();
    void refusesBrokenFeeds_data();
    void refusesBrokenFeeds();
    void statusLines_data();
    void statusLines();
    void dateLineInEnglish();
    void verdictAfterTheFallbackOverwritesIt();
    void statusIsWrittenWhole();
};

void tst_Appcast::versionComparison_data()
{
    QTest::addColumn<QString>("older");
    QTest::addColumn<QString>("newer");
    QTest::addColumn<bool>("same");
    const auto row = [](const char *name, const char *a, const char *b, bool same = false) {
        QTest::newRow(name) << QString::fromLatin1(a) << QString::fromLatin1(b) << same;
    };
    row("numbers by value", "1.9", "1.10");
    row("more components", "1.0", "1.0.1");
    row("trailing zero", "1.0", "1.0.0", true);
    row("leading zero", "1.02", "1.2", true);
    row("equal", "0.1.0", "0.1.0", true);
    row("beta before release", "2.0b1", "2.0");
    row("beta with space before release", "2.0 beta", "2.0");
    row("beta of a zero component", "2.0.0b1", "2.0");
    row("beta before a point release", "2.0b1", "2.0.1");
    row("betas by number", "2.0b1", "2.0b2");
    row("alpha before beta", "2.0a2", "2.0b1");
    row("letters ignore case", "2.0B1", "2.0b1", true);
    row("beta before release candidate", "2.0b3", "2.0rc1");
    row("longer than 64 bits", "99999999999999999999.0", "99999999999999999999.1");
    row("nothing before anything", "", "0.1");
}

void tst_Appcast::versionComparison()
{
    QFETCH(QString, older);
    QFETCH(QString, newer);
    QFETCH(bool, same);
    const int forward = QVVersionComparator::compareVersions(older, newer);
    const int backward = QVVersionComparator::compareVersions(newer, older);
    if (same) {
        QCOMPARE(forward, 0);
        QCOMPARE(backward, 0);
    } else {
        QVERIFY2(forward < 0, qPrintable(QString::number(forward)));
        QVERIFY2(backward > 0, qPrintable(QString::number(backward)));
    }
}

void tst_Appcast::parsesAnItem()
{
    const QVAppcast appcast = QVAppcast::fromData(
        feed("<item><title>Corvane 2.1</title>"
             "<description><![CDATA[<h2>New</h2><p>Faster &amp; smaller</p>]]></description>"
             "<link>https://corvane.org/download/</link>"
             "<sparkle:releaseNotesLink>https://corvane.org/notes/2.1.html</sparkle:releaseNotesLink>"
             "<pubDate>Sat, 05 Mar 2011 09:07:00 +0000</pubDate>"
             "<enclosure url=\"https://corvane.org/c.deb\" sparkle:version=\"210\" sparkle:shortVersionString=\"2.1\"/>"
             "</item>"));
    QVERIFY2(appcast.isValid(), qPrintable(appcast.errorString()));
    QCOMPARE(appcast.items().size(), 1);
    const QVAppcastItem &item = appcast.items().first();
    QCOMPARE(item.title, QStringLiteral("Corvane 2.1"));
    QCOMPARE(item.versionString, QStringLiteral("210"));
    QCOMPARE(item.displayVersionString, QStringLiteral("2.1"));
    QCOMPARE(item.itemDescription, QStringLiteral("<h2>New</h2><p>Faster &amp; smaller</p>"));
    QCOMPARE(item.link, QUrl(QStringLiteral("https://corvane.org/download/")));
    QCOMPARE(item.releaseNotesLink, QUrl(QStringLiteral("https://corvane.org/notes/2.1.html")));
    QCOMPARE(item.pubDate, QStringLiteral("Sat, 05 Mar 2011 09:07:00 +0000"));
}

void tst_Appcast::versionOnTheItemWinsOverTheEnclosure()
{
    const QVAppcast appcast = QVAppcast::fromData(feed("<item><sparkle:version>3.0</sparkle:version>"
                                                       "<enclosure url=\"https://x/\" sparkle:version=\"1.0\"/></item>"
                                                       "<item><link>javascript:alert(1)</link>"
                                                       "<enclosure sparkle:version=\"1.5\"/></item>"));
    QCOMPARE(appcast.items().size(), 2);
    QCOMPARE(appcast.items().at(0).versionString, QStringLiteral("3.0"));
    QCOMPARE(appcast.items().at(0).displayVersionString, QStringLiteral("3.0"));
    QVERIFY(appcast.items().at(1).link.isEmpty());
}

void tst_Appcast::picksTheNewestItem()
{
    const QVAppcast appcast = QVAppcast::fromData(feed(item("1.9") + item("1.10", "One Ten") + item("1.10b2")));
    QCOMPARE(appcast.items().size(), 3);
    QCOMPARE(appcast.bestItemNewerThan(QStringLiteral("1.2"))->displayVersionString, QStringLiteral("One Ten"));
    QCOMPARE(appcast.bestItemNewerThan(QStringLiteral("1.10b1"))->versionString, QStringLiteral("1.10"));
    QVERIFY(!appcast.bestItemNewerThan(QStringLiteral("1.10")));
}

void tst_Appcast::refusesBrokenFeeds_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("message");
    QTest::newRow("empty") << QByteArray("  \n") << QStringLiteral("empty");
    QTest::newRow("malformed") << feed(item("2.0")).replace("</channel>", "</chanel>") << QStringLiteral("damaged");
    QTest::newRow("cut off") << feed(item("2.0")).left(150) << QStringLiteral("damaged");
    QTest::newRow("no channel") << QByteArray("<rss version=\"2.0\"><item/></rss>") << QStringLiteral("no channel");
    QTest::newRow("a web page") << QByteArray("<html><body><channel/></body></html>") << QStringLiteral("no channel");
    QTest::newRow("no items") << feed({}) << QStringLiteral("no versions");
    QTest::newRow("items without version")
        << feed("<item><title>2.0</title><enclosure url=\"https://x/\"/></item>") << QStringLiteral("no versions");
}

void tst_Appcast::refusesBrokenFeeds()
{
    QFETCH(QByteArray, data);
    QFETCH(QString, message);
    const QVAppcast appcast = QVAppcast::fromData(data);
    QVERIFY(!appcast.isValid());
    QVERIFY(appcast.items().isEmpty());
    QVERIFY2(appcast.errorString().contains(message), qPrintable(appcast.errorString()));
}

void tst_Appcast::statusLines_data()
{
    QTest::addColumn<QJsonObject>("status");
    QTest::addColumn<QString>("statusLine");
    QTest::addColumn<bool>("hasDate");
    QTest::newRow("first launch") << QJsonObject() << QString() << false;
    QTest::newRow("newer version") << statusOf(QStringLiteral("0.1.0"), QStringLiteral("2.1"))
                                   << QStringLiteral("Corvane 2.1 is now available") << true;
    QTest::newRow("up to date") << statusOf(QStringLiteral("0.1.0"), QString())
                                << QStringLiteral("Corvane is up to date") << true;
    QTest::newRow("recorded by another version")
        << statusOf(QStringLiteral("0.0.9"), QStringLiteral("2.1")) << QString() << false;
    QJsonObject noVerdict = statusOf(QStringLiteral("0.1.0"), QString());
    noVerdict.remove(QStringLiteral("Update Version"));
    QTest::newRow("no verdict") << noVerdict << QString() << false;
    QJsonObject noDate = statusOf(QStringLiteral("0.1.0"), QStringLiteral("2.1"));
    noDate.remove(QStringLiteral("Check Date"));
    QTest::newRow("no date") << noDate << QStringLiteral("Corvane 2.1 is now available") << false;
}

void tst_Appcast::statusLines()
{
    QFETCH(QJsonObject, status);
    QFETCH(QString, statusLine);
    QFETCH(bool, hasDate);
    const QString version = QStringLiteral("0.1.0");
    QCOMPARE(QVUpdateStatusText::statusLine(status, QStringLiteral("Corvane"), version), statusLine);
    QCOMPARE(!QVUpdateStatusText::dateLine(status, version).isEmpty(), hasDate);
}

void tst_Appcast::dateLineInEnglish()
{
    const qint64 seconds = QDateTime(QDate(2011, 3, 5), QTime(9, 7, 42)).toSecsSinceEpoch();
    const QJsonObject status = statusOf(QStringLiteral("0.1.0"), QString(), seconds);
    QCOMPARE(QVUpdateStatusText::dateLine(status, QStringLiteral("0.1.0"), QLocale(QStringLiteral("en_US"))),
        QStringLiteral("Last check: March 5, 2011 - 9:07 AM"));
}

void tst_Appcast::verdictAfterTheFallbackOverwritesIt()
{
    QTemporaryDir directory;
    QVUserDefaults defaults(directory.filePath(QStringLiteral("settings.json")));
    QVSparkleWrapper wrapper(defaults, QStringLiteral("Corvane"), QStringLiteral("0.1.0"));
    const QVAppcast appcast = QVAppcast::fromData(feed(item("2.1")));

    // No verdict follows the loaded feed: the fallback counts it as up to date.
    wrapper.updaterDidFinishLoadingAppcast(appcast);
    QTRY_COMPARE(wrapper.status().value(QStringLiteral("Update Version")), QJsonValue(QString()));
    wrapper.updaterDidFindValidUpdate(appcast.items().first());
    QCOMPARE(wrapper.status().value(QStringLiteral("Update Version")), QJsonValue(QStringLiteral("2.1")));

    // A verdict cancels the pending fallback, which would otherwise overwrite it.
    wrapper.updaterDidFinishLoadingAppcast(appcast);
    wrapper.updaterDidFindValidUpdate(appcast.items().first());
    QTest::qWait(20);
    QCOMPARE(wrapper.status().value(QStringLiteral("Update Version")), QJsonValue(QStringLiteral("2.1")));
}

void tst_Appcast::statusIsWrittenWhole()
{
    QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("settings.json"));
    const QString key = QStringLiteral("QVSparkleWrapper Status");
    {
        QVUserDefaults defaults(path);
        defaults.setObject(statusOf(QStringLiteral("0.0.9"), QStringLiteral("0.1.0"), 5), key);
        QVSparkleWrapper wrapper(defaults, QStringLiteral("Corvane"), QStringLiteral("0.1.0"));
        const qint64 before = QDateTime::currentSecsSinceEpoch();
        wrapper.updaterDidNotFindUpdate();
        const QJsonObject stored = QVUserDefaults(path).objectForKey(key).toObject();
        QCOMPARE(stored.value(QStringLiteral("Current Version")), QJsonValue(QStringLiteral("0.1.0")));
        QCOMPARE(stored.value(QStringLiteral("Update Version")), QJsonValue(QString()));
        QVERIFY(stored.value(QStringLiteral("Check Date")).toInteger() >= before);
        QCOMPARE(stored.value(QStringLiteral("Check Date")).toDouble(),
            double(stored.value(QStringLiteral("Check Date")).toInteger())); // whole seconds

        // Forgetting the outcome keeps the date of the check.
        wrapper.setUpdateVersion(QString());
        const QJsonObject forgotten = QVUserDefaults(path).objectForKey(key).toObject();
        QVERIFY(!forgotten.contains(QStringLiteral("Update Version")));
        QCOMPARE(forgotten.value(QStringLiteral("Check Date")), stored.value(QStringLiteral("Check Date")));
    }
    QVUserDefaults defaults(path);
    QVSparkleWrapper unknownVersion(defaults, QStringLiteral("Corvane"), QString());
    unknownVersion.setUpdateVersion(QStringLiteral("2.1"));
    QVERIFY(!defaults.objectForKey(key).toObject().contains(QStringLiteral("Current Version")));
}

QTEST_GUILESS_MAIN(tst_Appcast)
#include "tst_appcast.moc"
