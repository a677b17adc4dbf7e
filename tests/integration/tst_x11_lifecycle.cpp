// Starting and stopping corvane: what it says without a display, what quitting
// saves, and what it does with a settings file it cannot read.
#include "QVCorvaneProcess.h"
#include "QVTestXServer.h"

#include <QDir>
#include <QJsonArray>
#include <QtTest>

#include <csignal>

class TestX11Lifecycle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void helpAndVersionNeedNoDisplay();
    void missingDisplayIsExplained_data();
    void missingDisplayIsExplained();
    void quitSignalsSave_data();
    void quitSignalsSave();
    void firstLaunchWritesAnEmptyList();
    void brokenFileIsMovedAsideAndKept();
    void startsOnAServerThatResets();

private:
    static QProcess *run(const QStringList &arguments, const QProcessEnvironment &environment);

    std::unique_ptr<QVTestXServer> m_server;
};

void TestX11Lifecycle::initTestCase()
{
    QString error;
    m_server = QVTestXServer::startXvfb(800, 600, &error);
    QVERIFY2(m_server, qPrintable(error));
}

QProcess *TestX11Lifecycle::run(const QStringList &arguments, const QProcessEnvironment &environment)
{
    auto *process = new QProcess;
    process->setProcessEnvironment(environment);
    process->start(QStringLiteral(CORVANE_BINARY), arguments);
    process->waitForFinished(15000);
    return process;
}

void TestX11Lifecycle::helpAndVersionNeedNoDisplay()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DISPLAY"));
    std::unique_ptr<QProcess> help(run({ QStringLiteral("--help") }, environment));
    QCOMPARE(help->exitCode(), 0);
    QVERIFY(help->readAllStandardOutput().contains("--settings FILE"));
    std::unique_ptr<QProcess> version(run({ QStringLiteral("--version") }, environment));
    QCOMPARE(version->exitCode(), 0);
    QVERIFY(version->readAllStandardOutput().startsWith("corvane "));
    std::unique_ptr<QProcess> wrong(run({ QStringLiteral("--frobnicate") }, environment));
    QCOMPARE(wrong->exitCode(), 2);
}

void TestX11Lifecycle::missingDisplayIsExplained_data()
{
    QTest::addColumn<QString>("display");
    QTest::addColumn<QString>("wayland");
    QTest::addColumn<QString>("message");
    QTest::newRow("no display") << QString() << QString()
                                << QStringLiteral("neither $WAYLAND_DISPLAY nor $DISPLAY is set");
    QTest::newRow("Wayland without X11") << QString() << QStringLiteral("wayland-0")
                                         << QStringLiteral("cannot connect to the Wayland compositor \"wayland-0\"");
    QTest::newRow("unreachable display") << QStringLiteral(":999") << QString()
                                         << QStringLiteral("cannot open X11 display \":999\"");
}

void TestX11Lifecycle::missingDisplayIsExplained()
{
    QFETCH(QString, display);
    QFETCH(QString, wayland);
    QFETCH(QString, message);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    if (!display.isEmpty())
        environment.insert(QStringLiteral("DISPLAY"), display);
    if (!wayland.isEmpty())
        environment.insert(QStringLiteral("WAYLAND_DISPLAY"), wayland);
    std::unique_ptr<QProcess> process(run({}, environment));
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(process->exitCode(), 1);
    const QString error = QString::fromLocal8Bit(process->readAllStandardError());
    QVERIFY2(error.contains(message), qPrintable(error));
    QCOMPARE(error.count(u'\n'), 1); // one clear message, nothing else
}

void TestX11Lifecycle::quitSignalsSave_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void TestX11Lifecycle::quitSignalsSave()
{
    QFETCH(int, signalNumber);
    // A control stored with only its action: everything else takes defaults,
    // and it gets an identifier that the save keeps.
    const QString path = m_server->temporaryPath(QStringLiteral("signal-%1.json").arg(signalNumber));
    QVCorvaneProcess::writeSettings(path,
        { { QStringLiteral("Custom Controls"), QJsonArray { QJsonObject { { QStringLiteral("Action"), 21 } } } },
            { QStringLiteral("Application Mode"), 1 } });
    QVCorvaneProcess corvane(m_server->displayName(), path);
    QVERIFY2(corvane.start(), qPrintable(corvane.log()));
    QCOMPARE(corvane.stop(signalNumber), 0);

    const QJsonObject saved = QVCorvaneProcess::readSettings(path);
    QCOMPARE(saved.value(QStringLiteral("Application Mode")).toInt(), 1); // other settings survive
    const QJsonArray controls = saved.value(QStringLiteral("Custom Controls")).toArray();
    QCOMPARE(controls.size(), 1);
    const QJsonObject control = controls.first().toObject();
    QCOMPARE(control.size(), 11);
    QCOMPARE(control.value(QStringLiteral("Action")).toInt(), 21);
    QCOMPARE(control.value(QStringLiteral("Move Delta")).toInt(), 1);
    QCOMPARE(control.value(QStringLiteral("Identifier")).toString().size(), 36);
}

void TestX11Lifecycle::firstLaunchWritesAnEmptyList()
{
    const QString path = m_server->temporaryPath(QStringLiteral("new/corvane/settings.json"));
    QVCorvaneProcess corvane(m_server->displayName(), path);
    QVERIFY2(corvane.start(), qPrintable(corvane.log()));
    QVERIFY(!QFile::exists(path)); // nothing is written before there is something to keep
    QCOMPARE(corvane.stop(SIGTERM), 0);
    const QJsonObject saved = QVCorvaneProcess::readSettings(path);
    QVERIFY(saved.value(QStringLiteral("Custom Controls")).isArray());
    QVERIFY(saved.value(QStringLiteral("Custom Controls")).toArray().isEmpty());
}

void TestX11Lifecycle::brokenFileIsMovedAsideAndKept()
{
    QDir directory(m_server->temporaryPath(QStringLiteral("broken")));
    QVERIFY(directory.mkpath(QStringLiteral(".")));
    const QString path = directory.filePath(QStringLiteral("settings.json"));
    const QByteArray broken = "{\"Custom Controls\": [ {\"Action\": 21, ";
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(broken);
    }
    QVCorvaneProcess corvane(m_server->displayName(), path);
    QVERIFY2(corvane.start(), qPrintable(corvane.log()));
    QCOMPARE(corvane.stop(SIGTERM), 0);

    const QStringList aside = directory.entryList({ QStringLiteral("settings.json.broken-*") });
    QCOMPARE(aside.size(), 1);
    QFile kept(directory.filePath(aside.first()));
    QVERIFY(kept.open(QIODevice::ReadOnly));
    QCOMPARE(kept.readAll(), broken);
    QCOMPARE(corvane.log().count(QLatin1String("cannot be read")), 1);
    QVERIFY(corvane.log().contains(aside.first()));
    QVERIFY(QVCorvaneProcess::readSettings(path).value(QStringLiteral("Custom Controls")).isArray());
}

void TestX11Lifecycle::startsOnAServerThatResets()
{
    // Corvane is the server's only client at every start and the server resets each time it
    // leaves: a connection opened and closed before Qt's own would leave Qt connecting to a
    // server in the middle of its reset.
    QString error;
    const std::unique_ptr<QVTestXServer> server = QVTestXServer::startXvfb(640, 480, &error, true);
    QVERIFY2(server, qPrintable(error));
    const QString path = server->temporaryPath(QStringLiteral("resets.json"));
    constexpr int starts = 40;
    for (int start = 0; start < starts; ++start) {
        QVCorvaneProcess corvane(server->displayName(), path);
        const bool started = corvane.start();
        const QString log = corvane.log();
        QVERIFY2(started, qPrintable(QStringLiteral("start %1: %2").arg(start).arg(log)));
        QCOMPARE(corvane.stop(SIGTERM), 0);
    }
}

QTEST_GUILESS_MAIN(TestX11Lifecycle)
#include "tst_x11_lifecycle.moc"
