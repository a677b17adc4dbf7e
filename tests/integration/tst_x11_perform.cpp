// Controls performed from outside a running corvane, as a desktop's own shortcut
// or a script does it: `corvane --perform` over the single-instance channel, and
// org.corvane.Corvane on the session bus. Real processes, a real X server.
#include "QVCorvaneProcess.h"
#include "QVTestSessionBus.h"
#include "QVTestXClient.h"
#include "QVTestXServer.h"

#include <QDBusInterface>
#include <QDBusReply>
#include <QDir>
#include <QtTest>

#include <csignal>

namespace
{
const QPoint start(300, 300);
} // namespace

class TestX11Perform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QString error;
        m_server = QVTestXServer::startXvfb(1024, 768, &error);
        QVERIFY2(m_server, qPrintable(error));
        m_client = std::make_unique<QVTestXClient>(m_server->displayName());
        m_runtime = m_server->temporaryPath(QStringLiteral("runtime"));
        QVERIFY(QDir().mkpath(m_runtime));
        QVERIFY(QFile::setPermissions(m_runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        m_bus = std::make_unique<QVTestSessionBus>();
        QVERIFY2(m_bus->start(&error), qPrintable(error));

        m_settings = m_server->temporaryPath(QStringLiteral("settings.json"));
        // A Move by 5 that repeats, a heading, a click; no hot keys: only the outside reaches them.
        const QJsonArray controls {
            QJsonObject { { QStringLiteral("Identifier"), QStringLiteral("right") }, { QStringLiteral("Action"), 31 },
                { QStringLiteral("Move Direction"), 5 }, { QStringLiteral("Move Delta"), 5 } },
            QJsonObject { { QStringLiteral("Action"), -101 }, { QStringLiteral("Title"), QStringLiteral("Clicks") } },
            QJsonObject { { QStringLiteral("Action"), 101 } },
        };
        QVCorvaneProcess::writeSettings(
            m_settings, { { QStringLiteral("Custom Controls"), controls }, { QStringLiteral("Stealth Mode"), true } });
        m_corvane = std::make_unique<QVCorvaneProcess>(m_server->displayName(), m_settings);
        m_corvane->setEnvironmentVariable(QStringLiteral("XDG_RUNTIME_DIR"), m_runtime);
        m_corvane->joinSessionBus(m_bus->address());
        QVERIFY2(m_corvane->start(), qPrintable(m_corvane->log()));
        m_server->run(QStringLiteral("xset"),
            { QStringLiteral("r"), QStringLiteral("rate"), QStringLiteral("300"), QStringLiteral("25") });
    }

    void cleanupTestCase()
    {
        if (m_corvane)
            QCOMPARE(m_corvane->stop(SIGTERM), 0);
    }

    void performByName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QPoint>("moved");
        QTest::newRow("title, any case") << QStringLiteral("move right") << 0 << QString() << QPoint(5, 0);
        QTest::newRow("identifier") << QStringLiteral("right") << 0 << QString() << QPoint(5, 0);
        QTest::newRow("nothing of that name")
            << QStringLiteral("Move Up") << 1 << QStringLiteral("no control is named \"Move Up\"") << QPoint();
        QTest::newRow("a heading") << QStringLiteral("Clicks") << 1 << QStringLiteral("cannot be performed")
                                   << QPoint();
    }

    void performByName()
    {
        QFETCH(QString, name);
        QFETCH(int, exitCode);
        QFETCH(QString, message);
        QFETCH(QPoint, moved);
        m_client->movePointer(start);
        QTRY_COMPARE(m_client->pointer(), start);
        QString errors;
        QCOMPARE(perform(name, false, m_settings, &errors), exitCode);
        QVERIFY2(errors.contains(message), qPrintable(errors));
        // A press and then its release: the repetition never starts.
        if (exitCode == 0)
            QCOMPARE(perform(name, true, m_settings, &errors), 0);
        QTRY_COMPARE(m_client->pointer(), start + moved);
        QTest::qWait(500);
        QCOMPARE(m_client->pointer(), start + moved);
    }

    void noRunningCorvane()
    {
        QString errors;
        QCOMPARE(
            perform(QStringLiteral("right"), false, m_server->temporaryPath(QStringLiteral("other.json")), &errors), 1);
        QVERIFY2(errors.contains(QStringLiteral("no Corvane is running")), qPrintable(errors));
    }

    // As a held key: the press performs, repeats start after the delay and end with the release.
    void performRepeatsUntilReleased()
    {
        m_client->movePointer(start);
        QTRY_COMPARE(m_client->pointer(), start);
        QString errors;
        QCOMPARE(perform(QStringLiteral("right"), false, m_settings, &errors), 0);
        QTRY_VERIFY_WITH_TIMEOUT(m_client->pointer().x() >= start.x() + 20, 3000);
        QCOMPARE(perform(QStringLiteral("right"), true, m_settings, &errors), 0);
        const QPoint released = m_client->pointer();
        QTest::qWait(400);
        QVERIFY(m_client->pointer().x() <= released.x() + 5); // at most one repeat was on its way
        const QPoint settled = m_client->pointer();
        QTest::qWait(400);
        QCOMPARE(m_client->pointer(), settled);
    }

    void sessionBus()
    {
        QDBusInterface corvane(QStringLiteral("org.corvane.Corvane"), QStringLiteral("/org/corvane/Corvane"),
            QStringLiteral("org.corvane.Corvane"), m_bus->connection());
        QVERIFY2(corvane.isValid(), qPrintable(corvane.lastError().message()));
        const QDBusMessage list = corvane.call(QStringLiteral("ListControls"));
        QCOMPARE(list.type(), QDBusMessage::ReplyMessage);
        // Only controls that act, identifier and title.
        const QDBusArgument listed = list.arguments().value(0).value<QDBusArgument>();
        QList<QStringList> controls;
        listed >> controls;
        QCOMPARE(controls.size(), 2);
        QCOMPARE(controls.at(0), QStringList({ QStringLiteral("right"), QStringLiteral("Move Right") }));

        m_client->movePointer(start);
        QTRY_COMPARE(m_client->pointer(), start);
        QCOMPARE(
            corvane.call(QStringLiteral("Perform"), QStringLiteral("Move Right")).type(), QDBusMessage::ReplyMessage);
        QCOMPARE(
            corvane.call(QStringLiteral("Release"), QStringLiteral("Move Right")).type(), QDBusMessage::ReplyMessage);
        QTRY_COMPARE(m_client->pointer(), start + QPoint(5, 0));
        const QDBusMessage refused = corvane.call(QStringLiteral("Perform"), QStringLiteral("Move Up"));
        QCOMPARE(refused.type(), QDBusMessage::ErrorMessage);
        QCOMPARE(refused.errorName(), QStringLiteral("org.corvane.Corvane.Error.NoSuchControl"));
    }

private:
    int perform(const QString &name, bool release, const QString &settings, QString *errors) const
    {
        return m_corvane->perform(name, release, errors, settings);
    }

    std::unique_ptr<QVTestXServer> m_server;
    std::unique_ptr<QVTestXClient> m_client;
    std::unique_ptr<QVTestSessionBus> m_bus;
    std::unique_ptr<QVCorvaneProcess> m_corvane;
    QString m_runtime;
    QString m_settings;
};

QTEST_GUILESS_MAIN(TestX11Perform)
#include "tst_x11_perform.moc"
