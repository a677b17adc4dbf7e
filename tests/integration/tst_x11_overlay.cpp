// The screen-section overlay on three monitors: open over the monitor under the
// pointer, narrow with keys, and land on the exact pixel, or leave the pointer.
#include "QVCorvaneProcess.h"
#include "QVTestXClient.h"
#include "QVTestXServer.h"

#include <QJsonArray>
#include <QtTest>

#include <csignal>

namespace {

constexpr quint64 controlOption = 0xC0000;
constexpr xcb_keycode_t keyS = 39; // the overlay's hot key, with Control and Alt
constexpr xcb_keycode_t keyK = 45;
constexpr xcb_keycode_t keyL = 46;
constexpr xcb_keycode_t returnKey = 36;
constexpr xcb_keycode_t escapeKey = 9;
constexpr xcb_keycode_t tabKey = 23;
constexpr xcb_keycode_t backspaceKey = 22;

const QList<QVTestXServer::Monitor> layout = QVTestXServer::threeMonitors();

} // namespace

class TestX11Overlay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void narrowAndLand_data();
    void narrowAndLand();

private:
    std::unique_ptr<QVTestXServer> m_server;
    std::unique_ptr<QVTestXClient> m_client;
    std::unique_ptr<QVCorvaneProcess> m_corvane;
};

void TestX11Overlay::initTestCase()
{
    QString error;
    m_server = QVTestXServer::startXorg(4160, 1080, layout, &error);
    QVERIFY2(m_server, qPrintable(error));
    m_client = std::make_unique<QVTestXClient>(m_server->displayName());
    const QString settings = m_server->temporaryPath(QStringLiteral("settings.json"));
    QVCorvaneProcess::writeSettings(
        settings, {{QStringLiteral("Custom Controls"), QJsonArray{QVCorvaneProcess::control(51, keyS, controlOption)}}});
    m_corvane = std::make_unique<QVCorvaneProcess>(m_server->displayName(), settings);
    QVERIFY2(m_corvane->start(), qPrintable(m_corvane->log()));
}

void TestX11Overlay::cleanupTestCase()
{
    if (m_corvane)
        QCOMPARE(m_corvane->stop(SIGTERM), 0);
}

void TestX11Overlay::narrowAndLand_data()
{
    QTest::addColumn<QPoint>("start");
    QTest::addColumn<QRect>("monitor");
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<QPoint>("expected");

    const int hotKey = -1; // the overlay's own hot key confirms
    QTest::newRow("Return at once: centre") << QPoint(1500, 500) << layout[0].rootRect << QList<int>{returnKey} << QPoint(2240, 540);
    QTest::newRow("up, right, Return: top right quarter")
        << QPoint(1500, 500) << layout[0].rootRect << QList<int>{keyK, keyL, returnKey} << QPoint(2720, 270);
    QTest::newRow("the hot key again confirms") << QPoint(1500, 500) << layout[0].rootRect << QList<int>{keyK, hotKey} << QPoint(2240, 270);
    QTest::newRow("Backspace undoes a step") << QPoint(1500, 500) << layout[0].rootRect << QList<int>{keyK, backspaceKey, returnKey}
                                             << QPoint(2240, 540);
    QTest::newRow("opens on the monitor under the pointer")
        << QPoint(100, 500) << layout[1].rootRect << QList<int>{returnKey} << QPoint(640, 680);
    QTest::newRow("Tab goes right, looping") << QPoint(3300, 300) << layout[2].rootRect << QList<int>{tabKey, returnKey}
                                             << QPoint(640, 680);
    QTest::newRow("Escape leaves the pointer") << QPoint(1500, 500) << layout[0].rootRect << QList<int>{keyK, escapeKey}
                                               << QPoint(1500, 500);
}

void TestX11Overlay::narrowAndLand()
{
    QFETCH(QPoint, start);
    QFETCH(QRect, monitor);
    QFETCH(QList<int>, keys);
    QFETCH(QPoint, expected);

    m_client->movePointer(start);
    m_client->tap(keyS, {QVTestKey::ControlL, QVTestKey::AltL});
    QTRY_VERIFY_WITH_TIMEOUT(m_client->hasViewableWindowAt(monitor), 5000);
    for (const int key : keys) {
        if (key < 0)
            m_client->tap(keyS, {QVTestKey::ControlL, QVTestKey::AltL});
        else
            m_client->tap(xcb_keycode_t(key));
    }
    // Closed: the keyboard is free again.
    QTRY_VERIFY_WITH_TIMEOUT(m_client->grabKeyboard(), 5000);
    m_client->ungrabKeyboard();
    QTRY_COMPARE_WITH_TIMEOUT(m_client->pointer(), expected, 5000);
    // It fades out before it goes; the next opening starts from nothing on screen.
    QTRY_VERIFY_WITH_TIMEOUT(!m_client->hasViewableWindowAt(monitor), 5000);
    if (QTest::currentDataTag() == QByteArray("Tab goes right, looping"))
        QTRY_VERIFY_WITH_TIMEOUT(!m_client->hasViewableWindowAt(layout[1].rootRect), 5000);
}

QTEST_GUILESS_MAIN(TestX11Overlay)
#include "tst_x11_overlay.moc"
