// The settings file while corvane runs: lists edited from outside take effect,
// outside writers never cost a file, and a file corvane cannot keep whole is
// kept aside before it is written. (A file it cannot read is the store's own test.)
#include "QVCorvaneProcess.h"
#include "QVOutsideWriter.h"
#include "QVTestXClient.h"
#include "QVTestXServer.h"

#include <QDir>
#include <QJsonArray>
#include <QRandomGenerator>
#include <QtTest>

#include <csignal>

namespace
{

constexpr quint64 controlOption = 0xC0000;
const QList<xcb_keycode_t> controlAlt { QVTestKey::ControlL, QVTestKey::AltL };
const QString controlsKey = QStringLiteral("Custom Controls");

QJsonObject move(qint64 direction, qint64 delta)
{
    return { { QStringLiteral("Move Direction"), direction }, { QStringLiteral("Move Delta"), delta } };
}

QStringList brokenFiles(const QString &directory)
{
    return QDir(directory).entryList({ QStringLiteral("settings.json.broken-*") }, QDir::Files);
}

} // namespace

class TestX11Settings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void outsideEditOfTheListTakesEffect();
    void outsideRewritesNeverCostTheFile();
    void listItCannotKeepIsKeptAside();

private:
    bool startCorvane(const QJsonObject &settings);
    QJsonArray savedControls() const
    {
        return QVCorvaneProcess::readSettings(m_settingsPath).value(controlsKey).toArray();
    }

    std::unique_ptr<QVTestXServer> m_server;
    std::unique_ptr<QVTestXClient> m_client;
    std::unique_ptr<QVCorvaneProcess> m_corvane;
    QString m_settingsPath;
};

void TestX11Settings::init()
{
    QString error;
    m_server = QVTestXServer::startXvfb(1280, 800, &error);
    QVERIFY2(m_server, qPrintable(error));
    m_client = std::make_unique<QVTestXClient>(m_server->displayName());
    QVERIFY(m_client->isConnected());
    QVERIFY(QDir().mkpath(m_server->temporaryPath(QStringLiteral("settings"))));
    m_settingsPath = m_server->temporaryPath(QStringLiteral("settings/settings.json"));
}

void TestX11Settings::cleanup()
{
    if (m_corvane && m_corvane->isRunning())
        QCOMPARE(m_corvane->stop(SIGTERM), 0);
    m_corvane.reset();
    m_client.reset();
    m_server.reset();
}

bool TestX11Settings::startCorvane(const QJsonObject &settings)
{
    QVCorvaneProcess::writeSettings(m_settingsPath, settings);
    m_corvane = std::make_unique<QVCorvaneProcess>(m_server->displayName(), m_settingsPath);
    return m_corvane->start();
}

void TestX11Settings::outsideEditOfTheListTakesEffect()
{
    using C = QVCorvaneProcess;
    QVERIFY(
        startCorvane({ { controlsKey, QJsonArray { C::control(31, QVTestKey::Right, controlOption, move(5, 10)) } } }));
    QVERIFY(C::tapMovesPointer(*m_client, QVTestKey::Right, controlAlt, QPoint(10, 0)));

    C::writeSettings(m_settingsPath,
        { { controlsKey, QJsonArray { C::control(31, QVTestKey::Left, controlOption, move(9, 10)) } } });
    QTRY_COMPARE_WITH_TIMEOUT(m_corvane->logLines(QStringLiteral("reloaded")).size(), 1, 5000);
    QVERIFY2(C::tapMovesPointer(*m_client, QVTestKey::Left, controlAlt, QPoint(-10, 0)), qPrintable(m_corvane->log()));
    QVERIFY2(C::tapMovesPointer(*m_client, QVTestKey::Right, controlAlt, QPoint()), "the old hot key is gone");

    // The same keys for a changed control: let go by the old list, taken by the new one.
    const QJsonArray last { C::control(31, QVTestKey::Left, controlOption, move(9, 30)) };
    C::writeSettings(m_settingsPath, { { controlsKey, last } });
    QTRY_COMPARE_WITH_TIMEOUT(m_corvane->logLines(QStringLiteral("reloaded")).size(), 2, 5000);
    QVERIFY2(C::tapMovesPointer(*m_client, QVTestKey::Left, controlAlt, QPoint(-30, 0)), qPrintable(m_corvane->log()));
    QVERIFY(m_corvane->logLines(QStringLiteral("inactive")).isEmpty());

    // Quitting writes the list as edited, not the one read at start.
    QCOMPARE(m_corvane->stop(SIGTERM), 0);
    QCOMPARE(savedControls().size(), 1);
    QCOMPARE(savedControls().first().toObject().value(QStringLiteral("Move Delta")).toInt(), 30);
}

void TestX11Settings::outsideRewritesNeverCostTheFile()
{
    using C = QVCorvaneProcess;
    QVERIFY(
        startCorvane({ { controlsKey, QJsonArray { C::control(31, QVTestKey::Right, controlOption, move(5, 1)) } } }));
    const quint32 seed = 20231123;
    QRandomGenerator random(seed);
    constexpr int rewrites = 90;
    QJsonArray controls;
    int kinds[3] = {};
    for (int rewrite = 1; rewrite <= rewrites; ++rewrite) {
        // A list long enough that half of it is no list, the hot key's move changed each time.
        controls = {};
        for (xcb_keycode_t key = 10; key < 10 + 3 + rewrite % 5; ++key)
            controls.append(C::control(31, key, controlOption, move(3, key)));
        controls.append(C::control(31, QVTestKey::Right, controlOption, move(5, rewrite)));
        const QByteArray contents = QJsonDocument(QJsonObject { { controlsKey, controls } }).toJson();
        const int kind = int(random.bounded(3));
        ++kinds[kind];
        QVERIFY(QVOutsideWriter::write(m_settingsPath, contents, QVOutsideWriter::Kind(kind)));
        QTest::qWait(int(random.bounded(400))); // read in between, or not
        QVERIFY2(brokenFiles(QFileInfo(m_settingsPath).path()).isEmpty(), qPrintable(m_corvane->log()));
    }
    qInfo("seed %u: %d renames, %d in-place rewrites, %d slow ones; %d reloads", seed, kinds[0], kinds[1], kinds[2],
        int(m_corvane->logLines(QStringLiteral("reloaded")).size()));

    QTRY_VERIFY2_WITH_TIMEOUT(C::tapMovesPointer(*m_client, QVTestKey::Right, controlAlt, QPoint(rewrites, 0)),
        qPrintable(m_corvane->log()), 10000);
    QCOMPARE(m_corvane->stop(SIGTERM), 0);
    QVERIFY2(brokenFiles(QFileInfo(m_settingsPath).path()).isEmpty(), qPrintable(m_corvane->log()));
    QCOMPARE(savedControls().size(), controls.size());
    QCOMPARE(savedControls().last().toObject().value(QStringLiteral("Move Delta")).toInt(), rewrites);
}

void TestX11Settings::listItCannotKeepIsKeptAside()
{
    // What each kind of stored value loads is for the manager's own test; here the
    // whole way from start to quit: kept aside once, the rest of the file saved.
    const QByteArray contents = "{\"Custom Controls\": [{\"Action\": 21}, \"Action 101\"], \"Application Mode\": 1}";
    QVERIFY(QVOutsideWriter::write(m_settingsPath, contents, QVOutsideWriter::InPlace));
    m_corvane = std::make_unique<QVCorvaneProcess>(m_server->displayName(), m_settingsPath);
    QVERIFY2(m_corvane->start(), qPrintable(m_corvane->log()));
    QCOMPARE(m_corvane->stop(SIGTERM), 0);

    const QStringList aside = brokenFiles(QFileInfo(m_settingsPath).path());
    QCOMPARE(aside.size(), 1);
    QCOMPARE(QVCorvaneProcess::readFile(QFileInfo(m_settingsPath).dir().filePath(aside.first())), contents);
    QCOMPARE(m_corvane->logLines(aside.first()).size(), 1);
    QCOMPARE(savedControls().size(), 1);
    QCOMPARE(QVCorvaneProcess::readSettings(m_settingsPath).value(QStringLiteral("Application Mode")).toInt(), 1);
}

QTEST_GUILESS_MAIN(TestX11Settings)
#include "tst_x11_settings.moc"
