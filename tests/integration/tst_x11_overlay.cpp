// The screen-section overlay on three monitors: open over the monitor under the
// pointer, narrow with keys, and land on the exact pixel, or leave the pointer;
// what it looks like on screen with and without a compositing manager, and at a
// Qt scale factor of 2.
#include "QVCorvaneProcess.h"
#include "QVTestXClient.h"
#include "QVTestXServer.h"

#include <QColor>
#include <QJsonArray>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QtTest>

#include <csignal>

namespace
{

constexpr quint64 controlOption = 0xC0000;
constexpr xcb_keycode_t keyS = 39; // the overlay's hot key, with Control and Alt
constexpr xcb_keycode_t keyD = 40; // the same for a second corvane at scale factor 2
constexpr xcb_keycode_t keyK = 45;
constexpr xcb_keycode_t keyL = 46;
constexpr xcb_keycode_t returnKey = 36;
constexpr xcb_keycode_t escapeKey = 9;
constexpr xcb_keycode_t tabKey = 23;
constexpr xcb_keycode_t backspaceKey = 22;
constexpr xcb_keycode_t commaKey = 59;

const QList<QVTestXServer::Monitor> layout = QVTestXServer::threeMonitors();
constexpr QRgb desktop = 0x336699;

// The test's stand-ins for keys in a key list.
constexpr int pressHotKey = -1;
constexpr int clickElsewhere = -2;

bool isClose(QRgb a, QRgb b, int tolerance = 2)
{
    return std::abs(qRed(a) - qRed(b)) <= tolerance && std::abs(qGreen(a) - qGreen(b)) <= tolerance
        && std::abs(qBlue(a) - qBlue(b)) <= tolerance;
}

// The current section's colour, for the colour of the other levels' lines.
QRgb currentSectionColor(QRgb levelColor)
{
    return QColor(levelColor).darker(160).rgb();
}

QString describe(QRgb color)
{
    return QColor(color).name();
}

// Saves a screenshot where CORVANE_SCREENSHOT_DIR says, for a person to look at.
void keepScreenshot(const QImage &image, const QString &name)
{
    const QString directory = qEnvironmentVariable("CORVANE_SCREENSHOT_DIR");
    if (!directory.isEmpty())
        image.save(directory + QLatin1Char('/') + name + QStringLiteral(".png"));
}

// The section's vertical line through column x of the shot, with its halo and the
// desktop beside it, at row y: the line in the current section's colour (a darker
// shade of the colour the other levels use), one pale pixel either side, and the
// desktop untouched two pixels further out.
void verifyCurrentLine(const QImage &shot, int x, int y, QRgb levelColor)
{
    const QRgb current = shot.pixel(x, y);
    QVERIFY2(isClose(current, currentSectionColor(levelColor)),
        qPrintable(QStringLiteral("line %1, other levels %2").arg(describe(current), describe(levelColor))));
    for (const int side : { x - 1, x + 1 }) {
        const QRgb halo = shot.pixel(side, y);
        QVERIFY2(qGray(halo) > qGray(desktop) + 20, qPrintable(QStringLiteral("halo %1").arg(describe(halo))));
    }
    QCOMPARE(describe(shot.pixel(x - 3, y)), describe(desktop));
    QCOMPARE(describe(shot.pixel(x + 3, y)), describe(desktop));
}

} // namespace

class TestX11Overlay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void narrowAndLand_data();
    void narrowAndLand();
    void pictureOverTheDesktop_data();
    void pictureOverTheDesktop();
    void tabCarriesTheStepsToTheNextMonitor();
    void exactPixelsAtScaleFactorTwo();
    void clicksGoThroughAfterReopening();
    void commaOpensTheSettings();

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
    QVCorvaneProcess::writeSettings(settings,
        { { QStringLiteral("Custom Controls"), QJsonArray { QVCorvaneProcess::control(51, keyS, controlOption) } } });
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

    QTest::newRow("Return at once: centre")
        << QPoint(1500, 500) << layout[0].rootRect << QList<int> { returnKey } << QPoint(2240, 540);
    QTest::newRow("up, right, Return: top right quarter")
        << QPoint(1500, 500) << layout[0].rootRect << QList<int> { keyK, keyL, returnKey } << QPoint(2720, 270);
    QTest::newRow("the hot key again confirms")
        << QPoint(1500, 500) << layout[0].rootRect << QList<int> { keyK, pressHotKey } << QPoint(2240, 270);
    QTest::newRow("Backspace undoes a step")
        << QPoint(1500, 500) << layout[0].rootRect << QList<int> { keyK, backspaceKey, returnKey } << QPoint(2240, 540);
    QTest::newRow("Backspace without steps keeps it open")
        << QPoint(1500, 500) << layout[0].rootRect << QList<int> { backspaceKey, returnKey } << QPoint(2240, 540);
    QTest::newRow("opens on the monitor under the pointer")
        << QPoint(100, 500) << layout[1].rootRect << QList<int> { returnKey } << QPoint(640, 680);
    QTest::newRow("Escape leaves the pointer")
        << QPoint(1500, 500) << layout[0].rootRect << QList<int> { keyK, escapeKey } << QPoint(1500, 500);
    QTest::newRow("a click elsewhere closes, leaving the pointer")
        << QPoint(1500, 500) << layout[0].rootRect << QList<int> { keyK, clickElsewhere } << QPoint(1500, 500);
}

void TestX11Overlay::narrowAndLand()
{
    QFETCH(QPoint, start);
    QFETCH(QRect, monitor);
    QFETCH(QList<int>, keys);
    QFETCH(QPoint, expected);

    m_client->movePointer(start);
    const xcb_window_t focus = m_client->inputFocus();
    m_client->tap(keyS, { QVTestKey::ControlL, QVTestKey::AltL });
    QTRY_VERIFY_WITH_TIMEOUT(m_client->hasViewableWindowAt(monitor), 5000);
    // The overlay has the keyboard through a grab; the focus stays where it was.
    QVERIFY(!m_client->grabKeyboard());
    QCOMPARE(m_client->inputFocus(), focus);
    for (const int key : keys) {
        if (key == pressHotKey)
            m_client->tap(keyS, { QVTestKey::ControlL, QVTestKey::AltL });
        else if (key == clickElsewhere)
            m_client->click(1);
        else
            m_client->tap(xcb_keycode_t(key));
    }
    // Closed: the keyboard is free again.
    QTRY_VERIFY_WITH_TIMEOUT(m_client->grabKeyboard(), 5000);
    m_client->ungrabKeyboard();
    QTRY_COMPARE_WITH_TIMEOUT(m_client->pointer(), expected, 5000);
    // It fades out before it goes; the next opening starts from nothing on screen.
    QTRY_VERIFY_WITH_TIMEOUT(!m_client->hasViewableWindowAt(monitor), 5000);
}

void TestX11Overlay::pictureOverTheDesktop_data()
{
    QTest::addColumn<QString>("compositor");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("no compositing manager") << QString() << QStringList();
    QTest::newRow("picom") << QStringLiteral("picom")
                           << QStringList { QStringLiteral("--backend"), QStringLiteral("xrender"),
                                  QStringLiteral("--config"), QStringLiteral("/dev/null") };
    QTest::newRow("xcompmgr") << QStringLiteral("xcompmgr") << QStringList();
}

void TestX11Overlay::pictureOverTheDesktop()
{
    QFETCH(QString, compositor);
    QFETCH(QStringList, arguments);

    QProcess compositorProcess;
    if (!compositor.isEmpty()) {
        if (QStandardPaths::findExecutable(compositor).isEmpty())
            QSKIP("the compositing manager is not installed");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DISPLAY"), m_server->displayName());
        compositorProcess.setProcessEnvironment(environment);
        compositorProcess.start(compositor, arguments);
        QVERIFY(compositorProcess.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(m_client->compositingManagerRunning(), 10000);
    }
    const auto stopCompositor = qScopeGuard([&] {
        compositorProcess.terminate(); // by its process id
        compositorProcess.waitForFinished(5000);
    });
    m_client->paintDesktop(desktop);

    // Open on the primary monitor and keep its top half.
    const QRect monitor = layout[0].rootRect;
    m_client->movePointer({ 1500, 800 });
    m_client->tap(keyS, { QVTestKey::ControlL, QVTestKey::AltL });
    QTRY_VERIFY_WITH_TIMEOUT(m_client->hasViewableWindowAt(monitor), 5000);
    // A failure below must not leave the keyboard taken for the tests that follow.
    const auto closeOverlay = qScopeGuard([&] {
        if (m_client->hasViewableWindowAt(monitor))
            m_client->tap(escapeKey);
    });
    // Shaped to its lines only where nothing composes translucent windows.
    QCOMPARE(m_client->isShaped(m_client->viewableWindowAt(monitor)), compositor.isEmpty());
    // The first picture on screen, then a step that changes part of it.
    const int x = monitor.width() / 2;
    QTRY_VERIFY_WITH_TIMEOUT(!isClose(m_client->screenshot(monitor).pixel(x, 800), desktop), 5000);
    m_client->tap(keyK);

    // The centre column: the display's line below the middle, the top half's above it.
    // Wait for the fade-in to end, when the lines are opaque, and for the compositing
    // manager to show the desktop.
    QImage shot;
    const auto fullyShown = [&] {
        shot = m_client->screenshot(monitor);
        keepScreenshot(
            shot, QStringLiteral("overlay-%1").arg(compositor.isEmpty() ? QStringLiteral("shaped") : compositor));
        return isClose(shot.pixel(x, 100), currentSectionColor(shot.pixel(x, 800)), 0)
            && shot.pixel(300, 100) == (desktop | 0xff000000);
    };
    QTRY_VERIFY_WITH_TIMEOUT(fullyShown(), 5000);
    const QRgb levelColor = shot.pixel(x, 800);
    QVERIFY2(!isClose(levelColor, desktop, 20), qPrintable(describe(levelColor)));
    verifyCurrentLine(shot, x, 100, levelColor);
    // The display's horizontal line at its middle row, the top half's at a quarter.
    QCOMPARE(describe(shot.pixel(300, 539)), describe(levelColor));
    QVERIFY(isClose(shot.pixel(300, 269), currentSectionColor(levelColor)));
    // The desktop around the lines, and on the other monitors. The display's own
    // lines lost their halo when the top half became the current section.
    for (const QPoint desktopPoint : { QPoint(300, 100), QPoint(1700, 800), QPoint(300, 538), QPoint(300, 540),
             QPoint(x + 1, 800), QPoint(300, 267) })
        QCOMPARE(describe(shot.pixel(desktopPoint)), describe(desktop));
    QCOMPARE(describe(m_client->screenshot(layout[1].rootRect).pixel(600, 400)), describe(desktop));

    m_client->tap(escapeKey);
    QTRY_VERIFY_WITH_TIMEOUT(!m_client->hasViewableWindowAt(monitor), 5000);
}

void TestX11Overlay::tabCarriesTheStepsToTheNextMonitor()
{
    // From the right monitor, looping round to the left one, whose top half is
    // drawn and lands the pointer: (640, 480).
    m_client->paintDesktop(desktop);
    m_client->movePointer({ 3300, 300 });
    m_client->tap(keyS, { QVTestKey::ControlL, QVTestKey::AltL });
    QTRY_VERIFY_WITH_TIMEOUT(m_client->hasViewableWindowAt(layout[2].rootRect), 5000);
    m_client->tap(keyK);
    m_client->tap(tabKey);
    const QRect monitor = layout[1].rootRect;
    QTRY_VERIFY_WITH_TIMEOUT(m_client->hasViewableWindowAt(monitor), 5000);
    QVERIFY(!m_client->hasViewableWindowAt(layout[2].rootRect));
    const int x = monitor.width() / 2;
    QImage shot;
    const auto drawn = [&] {
        shot = m_client->screenshot(monitor);
        return isClose(shot.pixel(x, 100), currentSectionColor(shot.pixel(x, 600)), 0);
    };
    QTRY_VERIFY_WITH_TIMEOUT(drawn(), 5000);
    verifyCurrentLine(shot, x, 100, shot.pixel(x, 600));
    m_client->tap(returnKey);
    QTRY_COMPARE_WITH_TIMEOUT(m_client->pointer(), QPoint(640, 480), 5000);
    QTRY_VERIFY_WITH_TIMEOUT(!m_client->hasViewableWindowAt(monitor), 5000);
}

void TestX11Overlay::exactPixelsAtScaleFactorTwo()
{
    // A second corvane with its own hot key, drawing at twice Qt's scale.
    const QString settings = m_server->temporaryPath(QStringLiteral("scaled.json"));
    QVCorvaneProcess::writeSettings(settings,
        { { QStringLiteral("Custom Controls"), QJsonArray { QVCorvaneProcess::control(51, keyD, controlOption) } } });
    QVCorvaneProcess scaled(m_server->displayName(), settings);
    scaled.setEnvironmentVariable(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("2"));
    QVERIFY2(scaled.start(), qPrintable(scaled.log()));
    m_client->paintDesktop(desktop);

    // The right monitor, top half, then its right half: centred on (3920, 250).
    const QRect monitor = layout[2].rootRect;
    m_client->movePointer({ 3300, 300 });
    m_client->tap(keyD, { QVTestKey::ControlL, QVTestKey::AltL });
    QTRY_VERIFY_WITH_TIMEOUT(m_client->hasViewableWindowAt(monitor), 5000);
    m_client->tap(keyK);
    m_client->tap(keyL);
    const int x = 3920 - monitor.x();
    QImage shot;
    const auto drawn = [&] {
        shot = m_client->screenshot(monitor);
        keepScreenshot(shot, QStringLiteral("overlay-scale-2"));
        return !isClose(shot.pixel(x, 50), desktop);
    };
    QTRY_VERIFY_WITH_TIMEOUT(drawn(), 5000);
    // The monitor's own vertical line, at its middle column, has the other levels' colour.
    verifyCurrentLine(shot, x, 50, shot.pixel(monitor.width() / 2, 500));
    m_client->tap(returnKey);
    QTRY_COMPARE_WITH_TIMEOUT(m_client->pointer(), QPoint(3920, 250), 5000);
    QTRY_VERIFY_WITH_TIMEOUT(!m_client->hasViewableWindowAt(monitor), 5000);
    QCOMPARE(scaled.stop(SIGTERM), 0);
}

void TestX11Overlay::clicksGoThroughAfterReopening()
{
    // Closed for longer than a few seconds, the overlay gives up its native window
    // and makes a new one when it opens again: that one too is shaped, lets clicks
    // through to the window beneath, and closes on them.
    const QRect monitor = layout[0].rootRect;
    m_client->openRecordingWindow(monitor.adjusted(100, 100, -100, -100));
    m_client->movePointer({ 1500, 500 });
    m_client->tap(keyS, { QVTestKey::ControlL, QVTestKey::AltL });
    QTRY_VERIFY_WITH_TIMEOUT(m_client->hasViewableWindowAt(monitor), 5000);
    const xcb_window_t first = m_client->viewableWindowAt(monitor);
    m_client->tap(escapeKey);
    QTRY_VERIFY_WITH_TIMEOUT(!m_client->hasViewableWindowAt(monitor), 5000);
    QTest::qWait(6000);
    m_client->tap(keyS, { QVTestKey::ControlL, QVTestKey::AltL });
    QTRY_VERIFY_WITH_TIMEOUT(m_client->hasViewableWindowAt(monitor), 5000);
    const xcb_window_t second = m_client->viewableWindowAt(monitor);
    QVERIFY(second != first);
    QVERIFY(m_client->isShaped(second));
    m_client->click(1);
    const std::optional<QVTestXClient::ButtonEvent> press = m_client->nextButtonEvent(5000);
    QVERIFY(press && press->press && press->button == 1);
    QTRY_VERIFY_WITH_TIMEOUT(!m_client->hasViewableWindowAt(monitor), 5000);
    QCOMPARE(m_client->pointer(), QPoint(1500, 500));
    QVERIFY(m_client->grabKeyboard());
    m_client->ungrabKeyboard();
}

void TestX11Overlay::commaOpensTheSettings()
{
    const QString title = QStringLiteral("Corvane");
    // Shown at launch; closed here so that its coming back is the comma's doing.
    QTRY_VERIFY_WITH_TIMEOUT(m_client->viewableTopLevel(title), 5000);
    m_client->closeWindow(m_client->viewableTopLevel(title)->window);
    QTRY_VERIFY_WITH_TIMEOUT(!m_client->viewableTopLevel(title), 5000);

    m_client->movePointer(QPoint(1500, 500));
    m_client->tap(keyS, { QVTestKey::ControlL, QVTestKey::AltL });
    QTRY_VERIFY_WITH_TIMEOUT(m_client->hasViewableWindowAt(layout[0].rootRect), 5000);
    m_client->tap(commaKey);
    // The overlay closed and let the keyboard go; the settings came; the pointer stayed.
    QTRY_VERIFY_WITH_TIMEOUT(m_client->viewableTopLevel(title), 5000);
    QTRY_VERIFY_WITH_TIMEOUT(m_client->grabKeyboard(), 5000);
    m_client->ungrabKeyboard();
    QCOMPARE(m_client->pointer(), QPoint(1500, 500));
}

QTEST_GUILESS_MAIN(TestX11Overlay)
#include "tst_x11_overlay.moc"
