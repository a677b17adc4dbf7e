#include "QVGlobalShortcutsSession.h"
#include "QVPortalHotKeyService.h"
#include "QVXdgShortcutTrigger.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

#include <sys/prctl.h>

namespace
{

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString controlInterface = QStringLiteral("org.corvane.test.FakePortal");
constexpr quint16 rightKey = 114; // evdev KEY_RIGHT + 8
constexpr quint16 aKey = 38;
constexpr quint32 controlKey = 0x1000, optionKey = 0x800, shiftKey = 0x200, commandKey = 0x100;

QVHotKeyRegistration registration(
    quint32 identifier, quint16 keyCode = rightKey, quint32 modifiers = controlKey | optionKey)
{
    QVHotKeyRegistration made;
    made.keyCode = keyCode;
    made.carbonModifiers = modifiers;
    made.identifier = identifier;
    return made;
}

// The bus and the fake portal end with the test even when it crashes.
void endWithTest(QProcess &process)
{
    process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
}

void stop(QProcess &process)
{
    if (process.state() != QProcess::Running)
        return;
    ::kill(pid_t(process.processId()), SIGTERM);
    process.waitForFinished(5000);
}

} // namespace

class tst_portal_globalshortcuts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void cleanup();

    void triggerText_data();
    void triggerText();
    void listReachesDesktop_data();
    void listReachesDesktop();
    void tokenStaysAcrossServices();
    void burstRebindsOnce();
    void changeWhileBindingFollowsOnce();
    void pressAndRelease_data();
    void pressAndRelease();
    void changedTriggerIsReported();
    void refusalLeavesNothingBound_data();
    void refusalLeavesNothingBound();
    void closedSessionIsBoundAgainOnce();
    void configureNeedsVersionTwo_data();
    void configureNeedsVersionTwo();

private:
    void startPortal(const QStringList &arguments);
    QVariant control(const QString &method, const QVariantList &arguments = {});
    QStringList calls() { return control(QStringLiteral("Calls")).toStringList(); }
    int countCalls(const QString &prefix);
    QMap<QString, QString> boundOnDesktop();

    QTemporaryDir m_dir;
    QProcess m_bus;
    QProcess m_portal;
    QString m_address;
    QDBusConnection m_connection { QString() };
};

void tst_portal_globalshortcuts::initTestCase()
{
    // No service directory: nothing on this bus may start the machine's real portal.
    const QString config = m_dir.filePath(QStringLiteral("bus.conf"));
    QFile file(config);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QStringLiteral("<busconfig><type>session</type><listen>unix:dir=%1</listen>"
                              "<policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
                              "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>")
                   .arg(m_dir.path())
                   .toUtf8());
    file.close();
    endWithTest(m_bus);
    m_bus.start(QStringLiteral("dbus-daemon"),
        { QStringLiteral("--config-file=") + config, QStringLiteral("--nofork"), QStringLiteral("--print-address=1") });
    QVERIFY(m_bus.waitForStarted(5000));
    QByteArray address;
    QDeadlineTimer deadline(10000);
    while (!address.contains('\n') && !deadline.hasExpired() && m_bus.waitForReadyRead(100))
        address += m_bus.readAllStandardOutput();
    QVERIFY2(!address.trimmed().isEmpty(), "dbus-daemon printed no address");
    m_address = QString::fromUtf8(address.trimmed());
    m_connection = QDBusConnection::connectToBus(m_address, QStringLiteral("portal-test"));
    QVERIFY(m_connection.isConnected());
}

void tst_portal_globalshortcuts::cleanupTestCase()
{
    QDBusConnection::disconnectFromBus(QStringLiteral("portal-test"));
    stop(m_bus);
}

void tst_portal_globalshortcuts::cleanup()
{
    stop(m_portal);
}

void tst_portal_globalshortcuts::startPortal(const QStringList &arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_address);
    m_portal.setProcessEnvironment(environment);
    m_portal.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    endWithTest(m_portal);
    m_portal.start(QStringLiteral("/usr/bin/python3"), QStringList { QStringLiteral(CORVANE_FAKE_PORTAL) } + arguments);
    QVERIFY(m_portal.waitForStarted(5000));
    QTRY_VERIFY_WITH_TIMEOUT(m_connection.interface()->isServiceRegistered(portalService).value(), 10000);
}

QVariant tst_portal_globalshortcuts::control(const QString &method, const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(portalService, portalPath, controlInterface, method);
    call.setArguments(arguments);
    const QDBusMessage reply = m_connection.call(call);
    return reply.arguments().isEmpty() ? QVariant() : reply.arguments().constFirst();
}

int tst_portal_globalshortcuts::countCalls(const QString &prefix)
{
    int count = 0;
    for (const QString &call : calls())
        count += call.startsWith(prefix) ? 1 : 0;
    return count;
}

QMap<QString, QString> tst_portal_globalshortcuts::boundOnDesktop()
{
    return qdbus_cast<QMap<QString, QString>>(control(QStringLiteral("Bound")));
}

void tst_portal_globalshortcuts::triggerText_data()
{
    QTest::addColumn<quint16>("keyCode");
    QTest::addColumn<quint32>("modifiers");
    QTest::addColumn<QString>("trigger");
    QTest::newRow("control option arrow") << rightKey << (controlKey | optionKey) << QStringLiteral("CTRL+ALT+Right");
    QTest::newRow("letter with shift and command") << aKey << (shiftKey | commandKey) << QStringLiteral("SHIFT+LOGO+A");
    QTest::newRow("function key alone") << quint16(67) << 0u << QStringLiteral("F1");
    QTest::newRow("space") << quint16(65) << controlKey << QStringLiteral("CTRL+space");
    QTest::newRow("no such key") << quint16(0) << controlKey << QString();
}

void tst_portal_globalshortcuts::triggerText()
{
    QFETCH(quint16, keyCode);
    QFETCH(quint32, modifiers);
    QFETCH(QString, trigger);
    QCOMPARE(QVXdgShortcutTrigger::fromKeyCode(keyCode, modifiers), trigger);
}

void tst_portal_globalshortcuts::listReachesDesktop_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("current portal") << QStringList();
    QTest::newRow("first draft (Plasma 5.27)") << QStringList { QStringLiteral("--draft") };
}

void tst_portal_globalshortcuts::listReachesDesktop()
{
    QFETCH(QStringList, arguments);
    startPortal(arguments);
    QVGlobalShortcutsSession session(m_connection, QStringLiteral("corvane"));
    QVPortalHotKeyService service(session);
    const auto right = service.registerHotKey(registration(1));
    const auto letter = service.registerHotKey(registration(2, aKey, shiftKey | commandKey));
    QVERIFY(right && letter);
    QSignalSpy bound(&session, &QVGlobalShortcutsSession::bound);
    QVERIFY(bound.wait(5000));
    const QMap<QString, QString> expected { { QStringLiteral("corvane-1"), QStringLiteral("CTRL+ALT+Right") },
        { QStringLiteral("corvane-2"), QStringLiteral("SHIFT+LOGO+A") } };
    QCOMPARE(boundOnDesktop(), expected);
    QCOMPARE(service.grantedTrigger(*right), QStringLiteral("Ctrl+Alt+Right"));
    QCOMPARE(service.grantedTrigger(*letter), QStringLiteral("Shift+Logo+A"));
}

void tst_portal_globalshortcuts::tokenStaysAcrossServices()
{
    startPortal({});
    for (int run = 0; run < 2; ++run) {
        QVGlobalShortcutsSession session(m_connection, QStringLiteral("corvane_hotkeys"));
        QVPortalHotKeyService service(session);
        QVERIFY(service.registerHotKey(registration(7)));
        QSignalSpy bound(&session, &QVGlobalShortcutsSession::bound);
        QVERIFY(bound.wait(5000));
        QVERIFY(session.sessionPath().endsWith(QStringLiteral("/corvane_hotkeys")));
    }
    QCOMPARE(countCalls(QStringLiteral("CreateSession:corvane_hotkeys")), 2);
    QCOMPARE(countCalls(QStringLiteral("CreateSession")), 2);
}

void tst_portal_globalshortcuts::burstRebindsOnce()
{
    startPortal({});
    QVGlobalShortcutsSession session(m_connection, QStringLiteral("corvane"));
    QVPortalHotKeyService service(session);
    const auto first = service.registerHotKey(registration(1));
    QSignalSpy bound(&session, &QVGlobalShortcutsSession::bound);
    QVERIFY(bound.wait(5000));
    service.unregisterHotKey(*first);
    for (quint32 identifier = 2; identifier <= 4; ++identifier)
        QVERIFY(service.registerHotKey(registration(identifier, quint16(rightKey - identifier))));
    QVERIFY(bound.wait(5000));
    QTest::qWait(300); // a second binding would come now
    QCOMPARE(bound.size(), 2);
    QCOMPARE(countCalls(QStringLiteral("CreateSession")), 2);
    QCOMPARE(countCalls(QStringLiteral("Close")), 1);
    QCOMPARE(boundOnDesktop().keys(),
        (QStringList { QStringLiteral("corvane-2"), QStringLiteral("corvane-3"), QStringLiteral("corvane-4") }));
}

void tst_portal_globalshortcuts::changeWhileBindingFollowsOnce()
{
    startPortal({});
    QVGlobalShortcutsSession session(m_connection, QStringLiteral("corvane"));
    QVPortalHotKeyService service(session);
    QVERIFY(service.registerHotKey(registration(1)));
    QTest::qWait(5); // the first binding is under way, the desktop has not answered yet
    QVERIFY(!session.isBound());
    QVERIFY(service.registerHotKey(registration(2, aKey)));
    QTRY_VERIFY(session.isBound());
    QCOMPARE(boundOnDesktop().size(), 2);
    QCOMPARE(countCalls(QStringLiteral("CreateSession")), 2);
    QCOMPARE(countCalls(QStringLiteral("Close")), 1);
}

void tst_portal_globalshortcuts::pressAndRelease_data()
{
    QTest::addColumn<QString>("activationToken");
    QTest::newRow("with activation token") << QStringLiteral("token-42");
    QTest::newRow("without") << QString();
}

void tst_portal_globalshortcuts::pressAndRelease()
{
    QFETCH(QString, activationToken);
    startPortal({});
    QVGlobalShortcutsSession session(m_connection, QStringLiteral("corvane"));
    QVPortalHotKeyService service(session);
    QList<QVEventRef> events;
    service.setEventHandler([&events](const QVEventRef &event) { events << event; });
    QVERIFY(service.registerHotKey(registration(1)));
    const auto handle = service.registerHotKey(registration(2, aKey));
    QSignalSpy bound(&session, &QVGlobalShortcutsSession::bound);
    QVERIFY(bound.wait(5000));
    QSignalSpy activated(&session, &QVGlobalShortcutsSession::activated);

    const QVariant path = QVariant::fromValue(QDBusObjectPath(session.sessionPath()));
    const QVariant other = QVariant::fromValue(QDBusObjectPath(portalPath + QStringLiteral("/session/1_99/corvane")));
    control(QStringLiteral("Fire"), { other, QStringLiteral("corvane-2"), true, activationToken });
    control(QStringLiteral("Fire"), { path, QStringLiteral("corvane-2"), true, activationToken });
    control(QStringLiteral("Fire"), { path, QStringLiteral("corvane-2"), false, activationToken });
    QTRY_COMPARE(events.size(), 2);
    QCOMPARE(events[0]->type, int(QVEvent::SystemDefined));
    QCOMPARE(events[0]->subtype, int(QVEvent::HotKeyPressed));
    QCOMPARE(events[0]->data1, *handle);
    QCOMPARE(events[1]->subtype, int(QVEvent::HotKeyReleased));
    QCOMPARE(events[1]->data1, *handle);
    QCOMPARE(activated.size(), 1); // the other session's press is not ours
    QCOMPARE(activated[0][2].toString(), activationToken);
}

void tst_portal_globalshortcuts::changedTriggerIsReported()
{
    startPortal({});
    QVGlobalShortcutsSession session(m_connection, QStringLiteral("corvane"));
    QVPortalHotKeyService service(session);
    const auto handle = service.registerHotKey(registration(1));
    QSignalSpy bound(&session, &QVGlobalShortcutsSession::bound);
    QVERIFY(bound.wait(5000));
    QSignalSpy changed(&service, &QVPortalHotKeyService::grantedTriggersChanged);
    control(QStringLiteral("ChangeTrigger"),
        { QVariant::fromValue(QDBusObjectPath(session.sessionPath())), QStringLiteral("corvane-1") });
    QVERIFY(changed.wait(5000));
    QCOMPARE(service.grantedTrigger(*handle), QStringLiteral("Logo+F12"));
}

void tst_portal_globalshortcuts::refusalLeavesNothingBound_data()
{
    QTest::addColumn<QString>("behaviour");
    QTest::newRow("the user refuses") << QStringLiteral("--refuse");
    QTest::newRow("the desktop never answers") << QStringLiteral("--silent");
}

void tst_portal_globalshortcuts::refusalLeavesNothingBound()
{
    QFETCH(QString, behaviour);
    startPortal({ behaviour });
    QVGlobalShortcutsSession session(m_connection, QStringLiteral("corvane"));
    session.setRequestTimeout(200);
    QVPortalHotKeyService service(session);
    const auto handle = service.registerHotKey(registration(1));
    QSignalSpy refused(&session, &QVGlobalShortcutsSession::refused);
    QVERIFY(refused.wait(5000));
    QVERIFY(!session.isBound());
    QVERIFY(session.sessionPath().isEmpty());
    QVERIFY(service.grantedTrigger(*handle).isEmpty());
    // Whatever the desktop made of the attempt is closed, not left behind.
    QTRY_COMPARE(countCalls(QStringLiteral("Close")), 1);
    QVERIFY(control(QStringLiteral("Sessions")).toStringList().isEmpty());
    // The same list is not asked for again and again; a changed one is.
    QTest::qWait(300);
    QCOMPARE(countCalls(QStringLiteral("CreateSession")), 1);
    QCOMPARE(refused.size(), 1);
    QVERIFY(service.registerHotKey(registration(2, aKey)));
    QVERIFY(refused.wait(5000));
    QCOMPARE(countCalls(QStringLiteral("CreateSession")), 2);
}

void tst_portal_globalshortcuts::closedSessionIsBoundAgainOnce()
{
    startPortal({});
    QVGlobalShortcutsSession session(m_connection, QStringLiteral("corvane"));
    session.setRebindDelay(50);
    QVPortalHotKeyService service(session);
    QVERIFY(service.registerHotKey(registration(1)));
    QSignalSpy bound(&session, &QVGlobalShortcutsSession::bound);
    QVERIFY(bound.wait(5000));
    QSignalSpy closed(&session, &QVGlobalShortcutsSession::closedByDesktop);
    control(QStringLiteral("EndSession"), { QVariant::fromValue(QDBusObjectPath(session.sessionPath())) });
    QVERIFY(closed.wait(5000));
    QVERIFY(!session.isBound());
    QVERIFY(bound.wait(5000));
    QTest::qWait(300);
    QCOMPARE(bound.size(), 2);
    QCOMPARE(countCalls(QStringLiteral("CreateSession")), 2);
    QCOMPARE(countCalls(QStringLiteral("Close")), 0); // the desktop closed it already
    QCOMPARE(boundOnDesktop().keys(), QStringList { QStringLiteral("corvane-1") });
}

void tst_portal_globalshortcuts::configureNeedsVersionTwo_data()
{
    QTest::addColumn<int>("version");
    QTest::newRow("version 1") << 1;
    QTest::newRow("version 2") << 2;
}

void tst_portal_globalshortcuts::configureNeedsVersionTwo()
{
    QFETCH(int, version);
    startPortal({ QStringLiteral("--version"), QString::number(version) });
    QVGlobalShortcutsSession session(m_connection, QStringLiteral("corvane"));
    QVPortalHotKeyService service(session);
    QVERIFY(service.registerHotKey(registration(1)));
    QSignalSpy bound(&session, &QVGlobalShortcutsSession::bound);
    QVERIFY(bound.wait(5000));
    QCOMPARE(session.version(), uint(version));
    QCOMPARE(session.configureShortcuts(), version >= 2);
    QTest::qWait(200);
    QCOMPARE(countCalls(QStringLiteral("ConfigureShortcuts")), version >= 2 ? 1 : 0);
}

QTEST_GUILESS_MAIN(tst_portal_globalshortcuts)
#include "tst_portal_globalshortcuts.moc"
