// Input Corvane synthesises is never left half done, whatever the user's hands do
// meanwhile; and targets stay on the monitor they belong to, whatever is stored.
// On Xorg with three monitors: L 1280x800 at (0,280), the primary P 1920x1080 at
// (1280,0), R 960x600 at (3200,100).
#include "QVCorvaneProcess.h"
#include "QVTestXClient.h"
#include "QVTestXServer.h"

#include <QJsonArray>
#include <QRandomGenerator>
#include <QtTest>

#include <csignal>

namespace
{

// Read from the server's key map at start: Xorg here has the xfree86 key codes,
// where the right-hand modifiers and Super sit elsewhere than in evdev's.
namespace Key
{
xcb_keycode_t ControlL, ControlR, AltL, AltR, ShiftL, ShiftR, SuperL, SuperR;
constexpr xcb_keycode_t C = 54;
constexpr xcb_keycode_t J = 44;
constexpr xcb_keycode_t K = 45;
constexpr xcb_keycode_t M = 58;
} // namespace Key

QList<xcb_keycode_t> modifierKeys()
{
    return { Key::ControlL, Key::ControlR, Key::AltL, Key::AltR, Key::ShiftL, Key::ShiftR, Key::SuperL, Key::SuperR };
}

constexpr quint64 shift = 0x20000;
constexpr quint64 control = 0x40000;
constexpr quint64 option = 0x80000;
constexpr quint64 command = 0x100000;
constexpr quint16 coreModifiers = XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;

QJsonObject move(qint64 direction, const QJsonValue &delta, bool confined = false)
{
    return { { QStringLiteral("Move Direction"), direction }, { QStringLiteral("Move Delta"), delta },
        { QStringLiteral("Confine to Display"), confined } };
}

struct Step {
    enum Kind { Down, Up, Wait } kind;
    int value; // key code or milliseconds
};

} // namespace

class TestX11InputSafety : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void modifierLetGoDuringAClick_data();
    void modifierLetGoDuringAClick();
    void randomKeysLeaveNothingDown();
    void targetsStayOnTheirMonitor_data();
    void targetsStayOnTheirMonitor();

private:
    void play(const QList<Step> &steps);
    // Nothing down on the server, and a click of the test's own carries no modifier.
    void verifyKeyboardIsFree();

    std::unique_ptr<QVTestXServer> m_server;
    std::unique_ptr<QVTestXClient> m_client;
    std::unique_ptr<QVCorvaneProcess> m_corvane;
};

void TestX11InputSafety::initTestCase()
{
    QString error;
    m_server = QVTestXServer::startXorg(4160, 1080, QVTestXServer::threeMonitors(), &error);
    QVERIFY2(m_server, qPrintable(error));
    m_client = std::make_unique<QVTestXClient>(m_server->displayName());
    QVERIFY(m_client->isConnected());
    const QList<QPair<xcb_keycode_t *, xcb_keysym_t>> symbols { { &Key::ControlL, 0xffe3 }, { &Key::ControlR, 0xffe4 },
        { &Key::ShiftL, 0xffe1 }, { &Key::ShiftR, 0xffe2 }, { &Key::AltL, 0xffe9 }, { &Key::AltR, 0xffea },
        { &Key::SuperL, 0xffeb }, { &Key::SuperR, 0xffec } };
    for (const auto &[key, symbol] : symbols) {
        *key = m_client->keyCodeForSymbol(symbol);
        QVERIFY2(*key, qPrintable(QStringLiteral("no key for symbol %1").arg(symbol, 0, 16)));
    }
    m_client->openRecordingWindow(QRect(1400, 100, 400, 300));

    using C = QVCorvaneProcess;
    const QJsonArray controls {
        C::control(101, Key::K, control | option), // click
        C::control(101, Key::C, command), // click
        C::control(102, Key::J, control | shift), // right click
        C::control(101, Key::M, option | shift), // click
        C::control(31, 10, control | option, move(5, 1)), // 1: right
        C::control(31, 11, command, move(9, 1)), // 2: left
        C::control(31, 12, control | shift, move(3, 1)), // 3: up
        C::control(31, 13, option | shift, move(7, 1)), // 4: down
        C::control(31, 14, control, move(5, 10, true)), // 5: right, confined
        C::control(33, 15, control, { { QStringLiteral("Move to Edge/Corner Direction"), 5 } }), // 6: right edge
        C::control(31, 16, control, move(5, 1e12)), // 7: right by 10^12
        C::control(31, 17, control, move(9, -5)), // 8: left by a negative delta
        C::control(31, 18, control, move(3, QStringLiteral("lots"))), // 9: up by a delta that is no number
    };
    const QString settings = m_server->temporaryPath(QStringLiteral("settings.json"));
    C::writeSettings(settings, { { QStringLiteral("Custom Controls"), controls } });
    m_corvane = std::make_unique<QVCorvaneProcess>(m_server->displayName(), settings);
    QVERIFY2(m_corvane->start(), qPrintable(m_corvane->log()));
}

void TestX11InputSafety::cleanupTestCase()
{
    if (m_corvane)
        QCOMPARE(m_corvane->stop(SIGTERM), 0);
}

void TestX11InputSafety::init()
{
    for (const xcb_keycode_t key : m_client->keysDown()) // a failed case leaves nothing to the next
        m_client->keyUp(key);
    m_client->movePointer(QPoint(1600, 250)); // over the recording window
    while (m_client->nextButtonEvent(0)) { }
}

void TestX11InputSafety::play(const QList<Step> &steps)
{
    for (const Step &step : steps) {
        switch (step.kind) {
        case Step::Down: m_client->keyDown(xcb_keycode_t(step.value)); break;
        case Step::Up: m_client->keyUp(xcb_keycode_t(step.value)); break;
        case Step::Wait: QTest::qWait(step.value); break;
        }
    }
}

void TestX11InputSafety::verifyKeyboardIsFree()
{
    // Longer than a click holds its button, so a late press of Corvane's would show.
    QTest::qWait(300);
    const QList<xcb_keycode_t> down = m_client->keysDown();
    QVERIFY2(down.isEmpty(),
        qPrintable(QStringLiteral("keys left down: %1")
                       .arg(QStringList([&] {
                           QStringList codes;
                           for (const xcb_keycode_t key : down)
                               codes << QString::number(key);
                           return codes;
                       }())
                                .join(u' '))));
    QCOMPARE(m_client->modifierState() & coreModifiers, 0);
    m_client->movePointer(QPoint(1600, 250));
    while (m_client->nextButtonEvent(0)) { }
    m_client->click(1);
    const auto press = m_client->nextButtonEvent(3000);
    QVERIFY(press && press->press);
    QCOMPARE(press->state & coreModifiers, 0);
    QVERIFY(m_client->nextButtonEvent(3000));
}

void TestX11InputSafety::modifierLetGoDuringAClick_data()
{
    QTest::addColumn<QList<Step>>("steps");
    using S = Step;
    QTest::newRow("Control let go 10 ms into Control+Alt+K")
        << QList<Step> { { S::Down, Key::ControlL }, { S::Down, Key::AltL }, { S::Down, Key::K }, { S::Wait, 10 },
               { S::Up, Key::ControlL }, { S::Wait, 150 }, { S::Up, Key::K }, { S::Up, Key::AltL } };
    QTest::newRow("Alt let go at once") << QList<Step> { { S::Down, Key::ControlL }, { S::Down, Key::AltL },
        { S::Down, Key::K }, { S::Up, Key::AltL }, { S::Wait, 150 }, { S::Up, Key::K }, { S::Up, Key::ControlL } };
    QTest::newRow("Super changes hands during Super+C")
        << QList<Step> { { S::Down, Key::SuperL }, { S::Down, Key::C }, { S::Wait, 10 }, { S::Up, Key::SuperL },
               { S::Down, Key::SuperR }, { S::Wait, 150 }, { S::Up, Key::C }, { S::Up, Key::SuperR } };
    QTest::newRow("right-hand Control+Shift+J let go 20 ms in")
        << QList<Step> { { S::Down, Key::ControlR }, { S::Down, Key::ShiftR }, { S::Down, Key::J }, { S::Wait, 20 },
               { S::Up, Key::ShiftR }, { S::Up, Key::ControlR }, { S::Wait, 150 }, { S::Up, Key::J } };
}

void TestX11InputSafety::modifierLetGoDuringAClick()
{
    QFETCH(QList<Step>, steps);
    play(steps);
    const auto press = m_client->nextButtonEvent(3000);
    QVERIFY2(press && press->press, "the hot key clicked");
    QCOMPARE(press->state & coreModifiers, 0); // the clicked program sees none of the held modifiers
    QVERIFY(m_client->nextButtonEvent(3000));
    verifyKeyboardIsFree();
}

void TestX11InputSafety::randomKeysLeaveNothingDown()
{
    // CORVANE_TEST_SEED repeats a failing run.
    const quint32 seed = qEnvironmentVariableIsSet("CORVANE_TEST_SEED")
        ? quint32(qEnvironmentVariableIntValue("CORVANE_TEST_SEED"))
        : 20261123u;
    qInfo("seed %u", seed);
    QRandomGenerator random(seed);
    const QList<xcb_keycode_t> hotKeys { Key::K, Key::C, Key::J, Key::M, 10, 11, 12, 13 };
    QSet<xcb_keycode_t> held;
    int events = 0;
    const auto toggle = [&](xcb_keycode_t key) {
        ++events;
        if (held.remove(key))
            m_client->keyUp(key);
        else
            m_client->keyDown((held.insert(key), key));
    };
    const auto toggleSome = [&](int most) {
        for (int count = random.bounded(most + 1); count > 0; --count)
            toggle(modifierKeys()[random.bounded(modifierKeys().size())]);
    };
    // Episodes as hands make them: some modifiers down, a hot key's key pressed
    // (a control, or nothing with those modifiers), modifiers changing while it is
    // held and while a click may hold its button, then the key let go.
    for (int episode = 0; events < 2000; ++episode) {
        // Now and then, once a click has had time to end: down is what the hands hold.
        if (episode % 8 == 7) {
            QTest::qWait(80);
            const QList<xcb_keycode_t> down = m_client->keysDown();
            const QSet<xcb_keycode_t> serverHeld(down.cbegin(), down.cend());
            QVERIFY2(serverHeld == held,
                qPrintable(QStringLiteral("episode %1 of seed %2: %3 keys down, %4 held")
                               .arg(episode)
                               .arg(seed)
                               .arg(serverHeld.size())
                               .arg(held.size())));
        }
        toggleSome(3);
        const xcb_keycode_t key = hotKeys[random.bounded(hotKeys.size())];
        m_client->keyDown(key);
        if (random.bounded(2))
            QTest::qWait(random.bounded(40));
        toggleSome(2);
        if (random.bounded(2))
            QTest::qWait(random.bounded(80));
        m_client->keyUp(key);
        events += 2;
        if (random.bounded(20) == 0)
            m_client->movePointer(QPoint(1600, 250)); // keep the moves from reaching an edge
    }
    for (const xcb_keycode_t key : std::as_const(held))
        m_client->keyUp(key);
    QVERIFY(m_corvane->isRunning());
    verifyKeyboardIsFree();
}

void TestX11InputSafety::targetsStayOnTheirMonitor_data()
{
    QTest::addColumn<QPoint>("start");
    QTest::addColumn<int>("key");
    QTest::addColumn<QPoint>("expected");
    // R begins at column 3200 beside the primary's last column 3199.
    QTest::newRow("confined move stops at the last column beside a neighbour")
        << QPoint(3195, 400) << 14 << QPoint(3199, 400);
    QTest::newRow("a confined move from the last column stays") << QPoint(3199, 400) << 14 << QPoint(3199, 400);
    QTest::newRow("right edge beside a neighbour is the last column") << QPoint(2000, 400) << 15 << QPoint(3199, 400);
    QTest::newRow("a delta of 10^12 from the gap above L: the layout's right edge")
        << QPoint(100, 10) << 16 << QPoint(4159, 100);
    QTest::newRow("a delta of 10^12 from the primary stays on it") << QPoint(2000, 400) << 16 << QPoint(3199, 400);
    QTest::newRow("a negative delta moves one pixel") << QPoint(2000, 400) << 17 << QPoint(1999, 400);
    QTest::newRow("a delta that is no number moves one pixel") << QPoint(2000, 400) << 18 << QPoint(2000, 399);
}

void TestX11InputSafety::targetsStayOnTheirMonitor()
{
    QFETCH(QPoint, start);
    QFETCH(int, key);
    QFETCH(QPoint, expected);
    m_client->movePointer(start);
    m_client->tap(xcb_keycode_t(key), { Key::ControlL });
    if (expected == start) {
        QTest::qWait(300);
        QCOMPARE(m_client->pointer(), start);
    } else {
        QTRY_COMPARE_WITH_TIMEOUT(m_client->pointer(), expected, 5000);
    }
    QVERIFY(m_corvane->isRunning());
}

QTEST_GUILESS_MAIN(TestX11InputSafety)
#include "tst_x11_input_safety.moc"
