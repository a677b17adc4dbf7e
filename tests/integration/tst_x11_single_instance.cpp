// One Corvane per settings file, with real processes: a second launch asks the first
// to reopen and goes, a crashed owner's lock is taken over, and the channel is private.
#include "QVCorvaneProcess.h"
#include "QVTestXServer.h"

#include <QDir>
#include <QRandomGenerator>
#include <QtTest>

#include <csignal>
#include <sys/stat.h>

class TestX11SingleInstance : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void secondLaunchReopensTheFirst();
    void otherSettingsFileRunsBeside();
    void channelIsPrivate();
    void fallbackDirectory_data();
    void fallbackDirectory();
    void crashedOwnerIsTakenOver();
    void launchesWhileStarting();

private:
    // A corvane run to its end, for launches expected to go at once.
    QProcess *launch(const QString &settingsPath, const QString &runtimeDirectory);
    QProcessEnvironment environment(const QString &runtimeDirectory) const;

    std::unique_ptr<QVTestXServer> m_server;
    QString m_runtime;
};

void TestX11SingleInstance::initTestCase()
{
    QString error;
    m_server = QVTestXServer::startXvfb(640, 480, &error);
    QVERIFY2(m_server, qPrintable(error));
    m_runtime = m_server->temporaryPath(QStringLiteral("runtime"));
    QVERIFY(QDir().mkpath(m_runtime));
    QVERIFY(QFile::setPermissions(m_runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

QProcessEnvironment TestX11SingleInstance::environment(const QString &runtimeDirectory) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), m_server->displayName());
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeDirectory);
    environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("*.debug=false"));
    environment.remove(QStringLiteral("CORVANE_SETTINGS"));
    return environment;
}

QProcess *TestX11SingleInstance::launch(const QString &settingsPath, const QString &runtimeDirectory)
{
    auto *process = new QProcess(this);
    process->setProcessEnvironment(environment(runtimeDirectory));
    process->start(QStringLiteral(CORVANE_BINARY), { QStringLiteral("--settings"), settingsPath });
    process->waitForFinished(20000);
    return process;
}

void TestX11SingleInstance::secondLaunchReopensTheFirst()
{
    const QString settings = m_server->temporaryPath(QStringLiteral("same.json"));
    QVCorvaneProcess first(m_server->displayName(), settings);
    first.setEnvironmentVariable(QStringLiteral("XDG_RUNTIME_DIR"), m_runtime);
    QVERIFY2(first.start(), qPrintable(first.log()));
    for (int launchCount = 1; launchCount <= 2; ++launchCount) {
        // Another spelling of the same file is the same instance.
        std::unique_ptr<QProcess> second(
            launch(QStringLiteral("%1/./same.json").arg(QFileInfo(settings).path()), m_runtime));
        QCOMPARE(second->exitStatus(), QProcess::NormalExit);
        QCOMPARE(second->exitCode(), 0);
        QVERIFY(!second->readAllStandardError().contains("started on "));
        QTRY_COMPARE(first.logLines(QStringLiteral("launched again")).size(), launchCount);
    }
    QVERIFY(first.isRunning());
}

void TestX11SingleInstance::otherSettingsFileRunsBeside()
{
    QVCorvaneProcess first(m_server->displayName(), m_server->temporaryPath(QStringLiteral("one.json")));
    QVCorvaneProcess second(m_server->displayName(), m_server->temporaryPath(QStringLiteral("two.json")));
    for (QVCorvaneProcess *corvane : { &first, &second }) {
        corvane->setEnvironmentVariable(QStringLiteral("XDG_RUNTIME_DIR"), m_runtime);
        QVERIFY2(corvane->start(), qPrintable(corvane->log()));
    }
    QVERIFY(first.isRunning());
}

void TestX11SingleInstance::channelIsPrivate()
{
    // The runtime directory open to all: only Corvane's own directory and socket keep others out.
    const QString runtime = m_server->temporaryPath(QStringLiteral("open-runtime"));
    QVERIFY(QDir().mkpath(runtime));
    QVERIFY(::chmod(QFile::encodeName(m_server->temporaryPath(QString())).constData(), 0755) == 0);
    QVERIFY(::chmod(QFile::encodeName(runtime).constData(), 0777) == 0);
    QVCorvaneProcess corvane(m_server->displayName(), m_server->temporaryPath(QStringLiteral("private.json")));
    corvane.setEnvironmentVariable(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
    QVERIFY2(corvane.start(), qPrintable(corvane.log()));

    const QString directory = runtime + QStringLiteral("/corvane");
    struct stat status = {};
    QCOMPARE(::stat(QFile::encodeName(directory).constData(), &status), 0);
    QCOMPARE(status.st_mode & 0777, 0700u);
    const QStringList sockets = QDir(directory).entryList({ QStringLiteral("*.socket") }, QDir::System);
    QCOMPARE(sockets.size(), 1);
    const QString socket = directory + u'/' + sockets.first();
    QCOMPARE(::stat(QFile::encodeName(socket).constData(), &status), 0);
    QVERIFY(S_ISSOCK(status.st_mode));
    QCOMPARE(status.st_mode & 077, 0u);

    // Another user cannot reach it (root would pass any mode, so ask as nobody).
    QProcess other;
    other.start(QStringLiteral("setpriv"),
        { QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"), QStringLiteral("--clear-groups"),
            QStringLiteral("/usr/bin/python3"), QStringLiteral("-c"),
            QStringLiteral("import socket,sys\ns=socket.socket(socket.AF_UNIX)\n"
                           "try:\n s.connect(sys.argv[1]); print('connected')\n"
                           "except PermissionError: print('refused')"),
            socket });
    QVERIFY(other.waitForFinished(10000));
    QCOMPARE(other.readAllStandardOutput().trimmed(), QByteArray("refused"));
}

void TestX11SingleInstance::fallbackDirectory_data()
{
    QTest::addColumn<int>("existingMode"); // -1: not there yet
    QTest::addColumn<bool>("otherOwner");
    QTest::addColumn<bool>("runs");
    QTest::newRow("created") << -1 << false << true;
    QTest::newRow("own and private") << 0700 << false << true;
    QTest::newRow("open to the group") << 0770 << false << false;
    QTest::newRow("another user's") << 0700 << true << false;
}

void TestX11SingleInstance::fallbackDirectory()
{
    QFETCH(int, existingMode);
    QFETCH(bool, otherOwner);
    QFETCH(bool, runs);
    static int round = 0;
    const QString temporary = m_server->temporaryPath(QStringLiteral("t%1").arg(++round));
    const QString directory = temporary + QStringLiteral("/corvane-0");
    QVERIFY(QDir().mkpath(existingMode < 0 ? temporary : directory));
    // A runtime directory that cannot be used: a plain file in its place.
    const QString notADirectory = temporary + QStringLiteral("/file");
    QVERIFY(QFile(notADirectory).open(QIODevice::WriteOnly));
    if (existingMode >= 0)
        QCOMPARE(::chmod(QFile::encodeName(directory).constData(), mode_t(existingMode)), 0);
    if (otherOwner)
        QCOMPARE(::chown(QFile::encodeName(directory).constData(), 65534, 65534), 0);

    QVCorvaneProcess corvane(m_server->displayName(), m_server->temporaryPath(QStringLiteral("fallback.json")));
    corvane.setEnvironmentVariable(QStringLiteral("XDG_RUNTIME_DIR"), notADirectory);
    corvane.setEnvironmentVariable(QStringLiteral("TMPDIR"), temporary);
    QCOMPARE(corvane.start(), runs);
    if (runs) {
        struct stat status = {};
        QCOMPARE(::stat(QFile::encodeName(directory).constData(), &status), 0);
        QCOMPARE(status.st_mode & 0777, 0700u);
        QCOMPARE(QDir(directory).entryList({ QStringLiteral("*.socket") }, QDir::System).size(), 1);
    } else {
        QCOMPARE(corvane.stop(SIGTERM), 1);
        QVERIFY2(corvane.logLines(directory).size() == 1, qPrintable(corvane.log()));
    }
}

void TestX11SingleInstance::crashedOwnerIsTakenOver()
{
    const QString settings = m_server->temporaryPath(QStringLiteral("crash.json"));
    const QString runtime = m_server->temporaryPath(QStringLiteral("crash-runtime"));
    QVERIFY(QDir().mkpath(runtime));
    {
        QVCorvaneProcess crashed(m_server->displayName(), settings);
        crashed.setEnvironmentVariable(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
        QVERIFY2(crashed.start(), qPrintable(crashed.log()));
        crashed.stop(SIGKILL); // leaves its lock file and socket behind
    }
    QCOMPARE(QDir(runtime + QStringLiteral("/corvane")).entryList({ QStringLiteral("*.lock") }, QDir::Files).size(), 1);
    QVCorvaneProcess successor(m_server->displayName(), settings);
    successor.setEnvironmentVariable(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
    QVERIFY2(successor.start(), qPrintable(successor.log()));
    std::unique_ptr<QProcess> again(launch(settings, runtime));
    QCOMPARE(again->exitCode(), 0); // the new owner answers on the replaced socket
    QTRY_COMPARE(successor.logLines(QStringLiteral("launched again")).size(), 1);
}

void TestX11SingleInstance::launchesWhileStarting()
{
    // Two launches close together, at seeded random distances: exactly one of them runs.
    QRandomGenerator random(8);
    for (int round = 0; round < 4; ++round) {
        const QString settings = m_server->temporaryPath(QStringLiteral("race-%1.json").arg(round));
        QProcess first, second;
        for (QProcess *process : { &first, &second }) {
            process->setProcessEnvironment(environment(m_runtime));
            process->setProgram(QStringLiteral(CORVANE_BINARY));
            process->setArguments({ QStringLiteral("--settings"), settings });
        }
        first.start();
        QTest::qWait(int(random.bounded(150)));
        second.start();
        QVERIFY(second.waitForFinished(20000) || first.waitForFinished(20000));
        QProcess &ended = second.state() == QProcess::NotRunning ? second : first;
        QProcess &running = &ended == &second ? first : second;
        QCOMPARE(ended.exitCode(), 0);
        QByteArray log;
        QTRY_VERIFY_WITH_TIMEOUT((log += running.readAllStandardError()).contains("launched again"), 20000);
        QVERIFY(running.state() == QProcess::Running && running.processId() > 0);
        ::kill(pid_t(running.processId()), SIGTERM);
        QVERIFY(running.waitForFinished(15000));
    }
}

QTEST_GUILESS_MAIN(TestX11SingleInstance)
#include "tst_x11_single_instance.moc"
