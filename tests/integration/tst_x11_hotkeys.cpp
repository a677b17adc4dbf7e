// Hot keys on a real X server: lock modifiers, sides, grabs held by others,
// keyboard mapping changes, and the repetition of a held Move.
#include "QVCorvaneProcess.h"
#include "QVTestXClient.h"
#include "QVTestXServer.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QtTest>

#include <csignal>

namespace
{

constexpr quint64 controlOption = 0xC0000;
constexpr quint64 leftControl = 0x1;
constexpr quint64 rightControl = 0x2000;
constexpr quint64 leftOption = 0x20;
constexpr xcb_keycode_t keyG = 42;
constexpr xcb_keycode_t keyJ = 44;

QJsonObject moveBy(qint64 direction, qint64 delta)
{
    return { { QStringLiteral("Move Direction"), direction }, { QStringLiteral("Move Delta"), delta } };
}

} // namespace

class TestX11HotKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void lockModifiersNeverMatterByDefault();
    void capsLockMattersWhenTheSettingSaysSo();
    void sidesMatterOnlyWithExactMatching();
    void combinationHeldByAnotherProgramIsKept();
    void storedValuesThatNameNoKeyAreWrittenBackUnchanged();
    void mappingChangeKeepsHotKeysWorking();
    void heldMoveRepeatsAtTheKeyboardRate();

private:
    bool startCorvane(const QJsonObject &settings);
    // Taps the key with Control and Alt held; true when the pointer moved by the offset.
    bool pressMoves(xcb_keycode_t key, const QList<xcb_keycode_t> &modifiers, const QPoint &offset);
    void toggleLock(xcb_keycode_t key) { m_client->tap(key); }

    std::unique_ptr<QVTestXServer> m_server;
    std::unique_ptr<QVTestXClient> m_client;
    std::unique_ptr<QVCorvaneProcess> m_corvane;
    QString m_settingsPath;
};

void TestX11HotKeys::init()
{
    QString error;
    m_server = QVTestXServer::startXvfb(1280, 800, &error);
    QVERIFY2(m_server, qPrintable(error));
    m_client = std::make_unique<QVTestXClient>(m_server->displayName());
    QVERIFY(m_client->isConnected());
    m_settingsPath = m_server->temporaryPath(QStringLiteral("settings.json"));
}

void TestX11HotKeys::cleanup()
{
    if (m_corvane && m_corvane->isRunning())
        QCOMPARE(m_corvane->stop(SIGTERM), 0);
    m_corvane.reset();
    m_client.reset();
    m_server.reset();
}

bool TestX11HotKeys::startCorvane(const QJsonObject &settings)
{
    QVCorvaneProcess::writeSettings(m_settingsPath, settings);
    m_corvane = std::make_unique<QVCorvaneProcess>(m_server->displayName(), m_settingsPath);
    return m_corvane->start();
}

bool TestX11HotKeys::pressMoves(xcb_keycode_t key, const QList<xcb_keycode_t> &modifiers, const QPoint &offset)
{
    return QVCorvaneProcess::tapMovesPointer(*m_client, key, modifiers, offset);
}

void TestX11HotKeys::lockModifiersNeverMatterByDefault()
{
    using C = QVCorvaneProcess;
    QVERIFY(startCorvane({ { QStringLiteral("Custom Controls"),
        QJsonArray { C::control(31, QVTestKey::Right, controlOption, moveBy(5, 10)) } } }));
    const QList<xcb_keycode_t> held { QVTestKey::ControlL, QVTestKey::AltL };
    QVERIFY(pressMoves(QVTestKey::Right, held, QPoint(10, 0)));
    toggleLock(QVTestKey::NumLock);
    QVERIFY(m_client->modifierState() != 0);
    QVERIFY2(pressMoves(QVTestKey::Right, held, QPoint(10, 0)), "NumLock on");
    toggleLock(QVTestKey::CapsLock);
    QVERIFY2(pressMoves(QVTestKey::Right, held, QPoint(10, 0)), "NumLock and Caps Lock on");
    // Without the modifiers it is an ordinary key, not the hot key.
    QVERIFY(pressMoves(QVTestKey::Right, { QVTestKey::ControlL }, QPoint()));
    toggleLock(QVTestKey::CapsLock);
    toggleLock(QVTestKey::NumLock);
}

void TestX11HotKeys::capsLockMattersWhenTheSettingSaysSo()
{
    using C = QVCorvaneProcess;
    const QJsonArray controls { C::control(31, QVTestKey::Right, controlOption, moveBy(5, 10)) };
    QVERIFY(startCorvane({ { QStringLiteral("Custom Controls"), controls } }));
    const QList<xcb_keycode_t> held { QVTestKey::ControlL, QVTestKey::AltL };

    // Changed from outside while running: takes effect at once.
    QJsonObject settings = C::readSettings(m_settingsPath);
    settings.insert(QStringLiteral("Hot Keys Account For Caps Lock Status"), true);
    C::writeSettings(m_settingsPath, settings);
    QTRY_VERIFY2_WITH_TIMEOUT(
        m_corvane->log().contains(QLatin1String("take Caps Lock into account")), qPrintable(m_corvane->log()), 5000);
    toggleLock(QVTestKey::CapsLock);
    QVERIFY2(pressMoves(QVTestKey::Right, held, QPoint()), qPrintable(m_corvane->log()));
    toggleLock(QVTestKey::CapsLock);
    QVERIFY2(pressMoves(QVTestKey::Right, held, QPoint(10, 0)), "recorded without Caps Lock, pressed without");
}

void TestX11HotKeys::sidesMatterOnlyWithExactMatching()
{
    using C = QVCorvaneProcess;
    const QJsonArray controls {
        C::control(31, QVTestKey::Left, controlOption | leftControl | leftOption, moveBy(9, 10)),
        C::control(31, QVTestKey::Left, controlOption | rightControl | leftOption, moveBy(9, 100)),
    };
    QVERIFY(startCorvane({ { QStringLiteral("Hot Keys Require Exact Modifier Key Matches"), true },
        { QStringLiteral("Custom Controls"), controls } }));
    QVERIFY2(!m_corvane->log().contains(QLatin1String("dropped")), qPrintable(m_corvane->log()));
    QVERIFY(pressMoves(QVTestKey::Left, { QVTestKey::ControlL, QVTestKey::AltL }, QPoint(-10, 0)));
    QVERIFY(pressMoves(QVTestKey::Left, { QVTestKey::ControlR, QVTestKey::AltL }, QPoint(-100, 0)));
    QVERIFY2(pressMoves(QVTestKey::Left, { QVTestKey::ControlL, QVTestKey::AltL }, QPoint(-10, 0)),
        qPrintable(m_corvane->log()));
}

void TestX11HotKeys::combinationHeldByAnotherProgramIsKept()
{
    using C = QVCorvaneProcess;
    const QList<xcb_keycode_t> held { QVTestKey::ControlL, QVTestKey::AltL };
    QVERIFY(m_client->grabKey(keyG, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1));
    const QJsonArray controls { C::control(31, keyG, controlOption, moveBy(5, 10)),
        C::control(31, keyJ, controlOption, moveBy(9, 10)) };
    QVERIFY(startCorvane({ { QStringLiteral("Custom Controls"), controls } }));

    const QStringList inactive = m_corvane->logLines(QStringLiteral("inactive"));
    QCOMPARE(inactive.size(), 1);
    QVERIFY2(inactive.first().contains(QLatin1String("another program holds")), qPrintable(inactive.first()));
    QVERIFY(pressMoves(keyJ, held, QPoint(-10, 0)));
    m_client->tap(keyG, held);
    QVERIFY2(m_client->receivedKeyPress(keyG, 3000), "the program holding the grab still gets its key");

    // Written back as stored, to be tried again at the next start.
    QCOMPARE(m_corvane->stop(SIGTERM), 0);
    const QJsonArray saved = C::readSettings(m_settingsPath).value(QStringLiteral("Custom Controls")).toArray();
    QCOMPARE(saved.size(), 2);
    for (qsizetype index = 0; index < saved.size(); ++index) {
        const QJsonObject hotKey = saved[index].toObject().value(QStringLiteral("Hot Key")).toObject();
        const QJsonObject stored = controls[index].toObject().value(QStringLiteral("Hot Key")).toObject();
        QCOMPARE(hotKey.value(QStringLiteral("Key Code")), stored.value(QStringLiteral("Key Code")));
        QCOMPARE(hotKey.value(QStringLiteral("Modifier Flags")), stored.value(QStringLiteral("Modifier Flags")));
    }

    // Still held at the next start; once the other program lets go, registering again takes it.
    m_corvane = std::make_unique<QVCorvaneProcess>(m_server->displayName(), m_settingsPath);
    QVERIFY(m_corvane->start());
    QCOMPARE(m_corvane->logLines(QStringLiteral("inactive")).size(), 1);
    m_client = std::make_unique<QVTestXClient>(m_server->displayName()); // the old connection's grab goes with it
    QVERIFY(pressMoves(keyG, held, QPoint()));
    QJsonObject settings = C::readSettings(m_settingsPath);
    settings.insert(QStringLiteral("Hot Keys Account For Caps Lock Status"), true);
    C::writeSettings(m_settingsPath, settings);
    QTRY_VERIFY2_WITH_TIMEOUT(
        m_corvane->log().contains(QLatin1String("take Caps Lock into account")), qPrintable(m_corvane->log()), 5000);
    QVERIFY2(pressMoves(keyG, held, QPoint(10, 0)), qPrintable(m_corvane->log()));
    QVERIFY(pressMoves(keyJ, held, QPoint(-10, 0)));
}

void TestX11HotKeys::storedValuesThatNameNoKeyAreWrittenBackUnchanged()
{
    using C = QVCorvaneProcess;
    QJsonObject beyondX = C::control(31, QVTestKey::Right, controlOption, moveBy(5, 10));
    QJsonObject hotKey = beyondX.value(QStringLiteral("Hot Key")).toObject();
    hotKey.insert(QStringLiteral("Key Code"), 65536 + QVTestKey::Right); // cut to 16 bits: Right
    beyondX.insert(QStringLiteral("Hot Key"), hotKey);
    const QJsonArray controls { beyondX, C::control(31, QVTestKey::Left, controlOption | 0x1000000, moveBy(9, 10)) };
    QVERIFY(startCorvane({ { QStringLiteral("Custom Controls"), controls } }));
    const QStringList inactive = m_corvane->logLines(QStringLiteral("inactive"));
    QCOMPARE(inactive.size(), 2);
    QVERIFY2(inactive[0].contains(QLatin1String("key code 65650")), qPrintable(inactive[0]));
    QVERIFY2(inactive[1].contains(QLatin1String("unknown bits")), qPrintable(inactive[1]));

    // Neither Right nor Left is taken: another program may grab them, and gets their presses.
    const quint16 controlAlt = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
    QVERIFY(m_client->grabKey(QVTestKey::Right, controlAlt));
    QVERIFY(m_client->grabKey(QVTestKey::Left, controlAlt));
    QVERIFY(pressMoves(QVTestKey::Right, { QVTestKey::ControlL, QVTestKey::AltL }, QPoint()));
    QVERIFY(m_client->receivedKeyPress(QVTestKey::Right, 3000));

    QCOMPARE(m_corvane->stop(SIGTERM), 0);
    const QJsonArray saved = C::readSettings(m_settingsPath).value(QStringLiteral("Custom Controls")).toArray();
    QCOMPARE(saved.size(), 2);
    for (qsizetype index = 0; index < saved.size(); ++index)
        QCOMPARE(saved[index].toObject().value(QStringLiteral("Hot Key")),
            controls[index].toObject().value(QStringLiteral("Hot Key")));
}

void TestX11HotKeys::mappingChangeKeepsHotKeysWorking()
{
    using C = QVCorvaneProcess;
    QVERIFY(startCorvane({ { QStringLiteral("Custom Controls"),
        QJsonArray { C::control(31, QVTestKey::Right, controlOption, moveBy(5, 10)) } } }));
    // NumLock moves to another modifier bit: the ignored lock variants must follow.
    QVERIFY(!m_server
                 ->run(QStringLiteral("xmodmap"),
                     { QStringLiteral("-e"), QStringLiteral("remove mod2 = Num_Lock"), QStringLiteral("-e"),
                         QStringLiteral("add mod3 = Num_Lock") })
                 .isNull());
    toggleLock(QVTestKey::NumLock);
    QVERIFY(m_client->modifierState() & XCB_MOD_MASK_3);
    QTRY_VERIFY_WITH_TIMEOUT(
        pressMoves(QVTestKey::Right, { QVTestKey::ControlL, QVTestKey::AltL }, QPoint(10, 0)), 5000);
    toggleLock(QVTestKey::NumLock);
}

void TestX11HotKeys::heldMoveRepeatsAtTheKeyboardRate()
{
    using C = QVCorvaneProcess;
    QVERIFY(startCorvane({ { QStringLiteral("Custom Controls"),
        QJsonArray { C::control(31, QVTestKey::Right, controlOption, moveBy(5, 1)) } } }));
    // 250 ms before the first repeat, then 25 per second (every 40 ms).
    QVERIFY(!m_server
                 ->run(QStringLiteral("xset"),
                     { QStringLiteral("r"), QStringLiteral("rate"), QStringLiteral("250"), QStringLiteral("25") })
                 .isNull());
    const QPoint start(100, 400);
    m_client->movePointer(start);
    m_client->keyDown(QVTestKey::ControlL);
    m_client->keyDown(QVTestKey::AltL);
    m_client->keyDown(QVTestKey::Right);
    QElapsedTimer held;
    held.start();
    QTRY_COMPARE_WITH_TIMEOUT(m_client->pointer(), start + QPoint(1, 0), 3000);
    const qint64 firstMove = held.elapsed();
    QTRY_VERIFY_WITH_TIMEOUT(m_client->pointer().x() > start.x() + 1, 3000);
    const qint64 firstRepeat = held.elapsed() - firstMove;
    QTest::qWait(1000);
    const int moved = m_client->pointer().x() - start.x();
    const qint64 heldFor = held.elapsed();
    m_client->keyUp(QVTestKey::Right);
    m_client->keyUp(QVTestKey::AltL);
    m_client->keyUp(QVTestKey::ControlL);
    const int afterRelease = m_client->pointer().x();
    QTest::qWait(300);
    QCOMPARE(m_client->pointer().x(), afterRelease + 0); // release stops it at once (one step in flight at most)

    // One move at the press, then one every 40 ms after the 250 ms delay.
    const double expected = 1.0 + double(heldFor - 250) / 40.0;
    qInfo("first repeat after %lld ms, %d moves in %lld ms (%.1f expected)", firstRepeat, moved, heldFor, expected);
    QVERIFY2(firstRepeat >= 200 && firstRepeat < 600, "the first repeat waits for the repeat delay");
    QVERIFY2(moved >= expected * 0.6 && moved <= expected * 1.15,
        "repeats come at the repeat interval, and the server's own repeats never add to them");
}

QTEST_GUILESS_MAIN(TestX11HotKeys)
#include "tst_x11_hotkeys.moc"
