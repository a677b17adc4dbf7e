// Every pointer action on a real X server with three monitors of different
// sizes: the primary not at the root origin, a shorter one on each side.
#include "QVCorvaneProcess.h"
#include "QVTestXClient.h"
#include "QVTestXServer.h"

#include <QJsonArray>
#include <QtTest>

#include <csignal>

namespace
{

constexpr quint64 controlOption = 0xC0000;

const QList<QVTestXServer::Monitor> layout = QVTestXServer::threeMonitors();

QJsonObject move(qint64 direction, bool confined = false)
{
    return { { QStringLiteral("Move Direction"), direction }, { QStringLiteral("Move Delta"), 10 },
        { QStringLiteral("Confine to Display"), confined } };
}

} // namespace

class TestX11Actions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void pointerActions_data();
    void pointerActions();
    void clicksCarryNoHeldModifiers_data();
    void clicksCarryNoHeldModifiers();
    void quickPressesEachMoveFromWhereTheLastLeft();
    void monitorChangeWhileRunning();

private:
    std::unique_ptr<QVTestXServer> m_server;
    std::unique_ptr<QVTestXClient> m_client;
    std::unique_ptr<QVCorvaneProcess> m_corvane;
};

void TestX11Actions::initTestCase()
{
    QString error;
    m_server = QVTestXServer::startXorg(4160, 1080, layout, &error);
    QVERIFY2(m_server, qPrintable(error));
    m_client = std::make_unique<QVTestXClient>(m_server->displayName());
    QVERIFY(m_client->isConnected());

    using C = QVCorvaneProcess;
    const QJsonArray controls {
        C::control(21, 54, controlOption), // c: centre
        C::control(31, 10, controlOption, move(5)), // 1: right
        C::control(31, 11, controlOption, move(10)), // 2: up and left
        C::control(31, 12, controlOption, move(7)), // 3: down
        C::control(31, 13, controlOption, move(3)), // 4: up
        C::control(31, 14, controlOption, move(9)), // 5: left
        C::control(31, 15, controlOption, move(5, true)), // 6: right, confined
        C::control(33, 24, controlOption, { { QStringLiteral("Move to Edge/Corner Direction"), 4 } }), // q
        C::control(33, 25, controlOption, { { QStringLiteral("Move to Edge/Corner Direction"), 7 } }), // w
        C::control(33, 26, controlOption, { { QStringLiteral("Move to Edge/Corner Direction"), 9 } }), // e
        C::control(41, 27, controlOption,
            { { QStringLiteral("Move to Other Display Direction"), 5 },
                { QStringLiteral("Reposition Proportionally"), true } }), // r
        C::control(41, 28, controlOption, { { QStringLiteral("Move to Other Display Direction"), 9 } }), // t
        C::control(41, 29, controlOption, { { QStringLiteral("Move to Other Display Direction"), 3 } }), // y
        C::control(41, 30, controlOption,
            { { QStringLiteral("Move to Other Display Direction"), 5 },
                { QStringLiteral("Loop Through Displays"), true } }), // u
        C::control(101, 45, controlOption), // k: click
        C::control(102, 46, controlOption), // l: right click
    };
    const QString settings = m_server->temporaryPath(QStringLiteral("settings.json"));
    C::writeSettings(settings, { { QStringLiteral("Custom Controls"), controls } });
    m_corvane = std::make_unique<QVCorvaneProcess>(m_server->displayName(), settings);
    QVERIFY2(m_corvane->start(), qPrintable(m_corvane->log()));
}

void TestX11Actions::cleanupTestCase()
{
    if (m_corvane)
        QCOMPARE(m_corvane->stop(SIGTERM), 0);
}

void TestX11Actions::pointerActions_data()
{
    QTest::addColumn<QPoint>("start");
    QTest::addColumn<int>("key");
    QTest::addColumn<QPoint>("expected");

    QTest::newRow("centre of the primary") << QPoint(1500, 500) << 54 << QPoint(2240, 540);
    QTest::newRow("centre of the left monitor") << QPoint(100, 500) << 54 << QPoint(640, 680);
    QTest::newRow("centre of the right monitor") << QPoint(3300, 650) << 54 << QPoint(3680, 400);
    QTest::newRow("move right") << QPoint(1500, 500) << 10 << QPoint(1510, 500);
    QTest::newRow("move up and left: 7 on each axis") << QPoint(1500, 500) << 11 << QPoint(1493, 493);
    QTest::newRow("move down") << QPoint(1500, 500) << 12 << QPoint(1500, 510);
    QTest::newRow("move up stops at the shorter monitor's top") << QPoint(100, 285) << 13 << QPoint(100, 280);
    QTest::newRow("move left crosses onto the left monitor") << QPoint(1285, 500) << 14 << QPoint(1275, 500);
    QTest::newRow("move left beside the dead space stays") << QPoint(1285, 100) << 14 << QPoint(1280, 100);
    QTest::newRow("confined move right at a dead-space edge") << QPoint(3195, 900) << 15 << QPoint(3199, 900);
    QTest::newRow("top right corner of the right monitor") << QPoint(3500, 400) << 24 << QPoint(4159, 100);
    QTest::newRow("bottom edge of the right monitor") << QPoint(3500, 400) << 25 << QPoint(3500, 699);
    QTest::newRow("bottom edge of the primary") << QPoint(1500, 400) << 25 << QPoint(1500, 1079);
    QTest::newRow("left edge of the primary") << QPoint(1500, 500) << 26 << QPoint(1280, 500);
    QTest::newRow("other display right, repositioned") << QPoint(2240, 540) << 27 << QPoint(3680, 400);
    QTest::newRow("other display left, same offset") << QPoint(1500, 700) << 28 << QPoint(220, 700);
    QTest::newRow("no display above") << QPoint(1500, 700) << 29 << QPoint(1500, 700);
    QTest::newRow("right of the last display loops to the first") << QPoint(3680, 400) << 30 << QPoint(480, 780);
    QTest::newRow("right of the last display without loop") << QPoint(3680, 400) << 27 << QPoint(3680, 400);
}

void TestX11Actions::pointerActions()
{
    QFETCH(QPoint, start);
    QFETCH(int, key);
    QFETCH(QPoint, expected);

    m_client->movePointer(start);
    QCOMPARE(m_client->pointer(), start);
    m_client->tap(xcb_keycode_t(key), { QVTestKey::ControlL, QVTestKey::AltL });
    if (expected == start) {
        // Nothing to wait for: give a wrong move the time it would take, then look.
        QTest::qWait(300);
        QCOMPARE(m_client->pointer(), start);
    } else {
        QTRY_COMPARE_WITH_TIMEOUT(m_client->pointer(), expected, 5000);
    }
}

void TestX11Actions::clicksCarryNoHeldModifiers_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("button");
    QTest::newRow("click") << 45 << 1;
    QTest::newRow("right click") << 46 << 3;
}

void TestX11Actions::clicksCarryNoHeldModifiers()
{
    QFETCH(int, key);
    QFETCH(int, button);
    static bool windowOpen = false;
    if (!windowOpen) {
        m_client->openRecordingWindow(QRect(1400, 100, 400, 300));
        windowOpen = true;
    }
    m_client->movePointer(QPoint(1600, 250));

    m_client->keyDown(QVTestKey::ControlL);
    m_client->keyDown(QVTestKey::AltL);
    m_client->tap(xcb_keycode_t(key));
    const auto press = m_client->nextButtonEvent(5000);
    const auto release = m_client->nextButtonEvent(5000);
    QVERIFY(press && release);
    QVERIFY(press->press && !release->press);
    QCOMPARE(press->button, button);
    QCOMPARE(release->button, button);
    const quint16 heldModifiers = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
    QCOMPARE(press->state & heldModifiers, 0);
    QCOMPARE(release->state & heldModifiers, 0);

    // The keys the user still holds are down again once the click is done.
    QTRY_VERIFY_WITH_TIMEOUT(
        m_client->keysDown().contains(QVTestKey::ControlL) && m_client->keysDown().contains(QVTestKey::AltL), 3000);
    m_client->keyUp(QVTestKey::AltL);
    m_client->keyUp(QVTestKey::ControlL);
    QTRY_VERIFY_WITH_TIMEOUT(m_client->keysDown().isEmpty(), 3000);
    QTest::qWait(200);
    QVERIFY2(m_client->keysDown().isEmpty(), "a key stayed down after the click");
}

void TestX11Actions::quickPressesEachMoveFromWhereTheLastLeft()
{
    // Presses sent back to back: each later press reaches Corvane before the server has
    // handled the move of the one before, so the position its event reports is stale.
    const QPoint start(1500, 500);
    m_client->movePointer(start);
    m_client->keyDown(QVTestKey::ControlL);
    m_client->keyDown(QVTestKey::AltL);
    constexpr int presses = 20;
    for (int press = 0; press < presses; ++press)
        m_client->tapQuickly(10); // 1: right by 10
    m_client->keyUp(QVTestKey::AltL);
    m_client->keyUp(QVTestKey::ControlL);
    QTRY_COMPARE_WITH_TIMEOUT(m_client->pointer(), start + QPoint(10 * presses, 0), 5000);
    QTest::qWait(200);
    QCOMPARE(m_client->pointer(), start + QPoint(10 * presses, 0));
}

void TestX11Actions::monitorChangeWhileRunning()
{
    // Take the right monitor away: the pointer actions follow at once.
    QVERIFY(!m_server->run(QStringLiteral("xrandr"), { QStringLiteral("--delmonitor"), QStringLiteral("R") }).isNull());
    m_client->movePointer(QPoint(2240, 540));
    m_client->tap(30, { QVTestKey::ControlL, QVTestKey::AltL }); // right, looping: now the left monitor
    QTRY_COMPARE_WITH_TIMEOUT(m_client->pointer(), QPoint(960, 540), 5000);

    // Monitors set with RandR 1.5 announce themselves only by the root's ConfigureNotify:
    // the very next press must see the new layout. The primary narrows to 960 pixels.
    QVERIFY(!m_server->run(QStringLiteral("xrandr"), { QStringLiteral("--delmonitor"), QStringLiteral("P") }).isNull());
    QVERIFY(!m_server
                 ->run(QStringLiteral("xrandr"),
                     { QStringLiteral("--setmonitor"), QStringLiteral("*P"), QStringLiteral("960/240x1080/270+1280+0"),
                         QStringLiteral("none") })
                 .isNull());
    m_client->movePointer(QPoint(1500, 500));
    m_client->tap(54, { QVTestKey::ControlL, QVTestKey::AltL }); // centre
    QTRY_COMPARE_WITH_TIMEOUT(m_client->pointer(), QPoint(1760, 540), 5000);
    QVERIFY(m_corvane->isRunning());
}

QTEST_GUILESS_MAIN(TestX11Actions)
#include "tst_x11_actions.moc"
