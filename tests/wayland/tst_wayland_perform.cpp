// Corvane itself on headless sway 1.7, driven as a compositor's key bindings drive
// it: `corvane --perform`, a new process each time. The probe reports where the
// pointer lands on each output and what the clicked window hears; grim shows the
// screen section overlay.
#include "QVCorvaneProcess.h"
#include "QVTestSessionBus.h"
#include "QVTestWaylandSession.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>

#include <QJsonArray>
#include <QtTest>

#include <csignal>

namespace
{

using Outputs = QVTestSway::Outputs;

const QString primary = QStringLiteral("HEADLESS-1");
const QString turned = QStringLiteral("X11-1"); // scale 2, turned by 90 degrees, right of the primary

// Evdev codes of the probe's keyboard.
constexpr int keyEscape = 1;
constexpr int keyTab = 15;
constexpr int keyReturn = 28;
constexpr int keyA = 30;
constexpr int keyLeftShift = 42;
constexpr int keyRight = 106;
constexpr int keyDown = 108;

QJsonObject control(const QString &identifier, qint64 action, const QJsonObject &extra = {})
{
    QJsonObject control { { QStringLiteral("Identifier"), identifier }, { QStringLiteral("Action"), action } };
    for (auto it = extra.begin(); it != extra.end(); ++it)
        control.insert(it.key(), it.value());
    return control;
}

// No hot keys: on wlroots only the compositor's bindings reach them.
QJsonArray controls()
{
    const QString direction = QStringLiteral("Move Direction");
    const QString delta = QStringLiteral("Move Delta");
    const QString edge = QStringLiteral("Move to Edge/Corner Direction");
    return {
        control(QStringLiteral("right"), 31, { { direction, 5 }, { delta, 10 } }),
        control(QStringLiteral("upleft"), 31, { { direction, 10 }, { delta, 10 } }),
        control(QStringLiteral("center"), 21),
        control(QStringLiteral("topright"), 33, { { edge, 4 } }),
        control(QStringLiteral("bottomleft"), 33, { { edge, 8 } }),
        control(QStringLiteral("rightedge"), 33, { { edge, 5 } }),
        control(QStringLiteral("next"), 41,
            { { QStringLiteral("Move to Other Display Direction"), 5 },
                { QStringLiteral("Loop Through Displays"), true },
                { QStringLiteral("Reposition Proportionally"), true } }),
        control(QStringLiteral("section"), 51),
        control(QStringLiteral("click"), 101),
        control(QStringLiteral("rightclick"), 102),
    };
}

// Where the overlay drew along one row (Qt::Horizontal) or column of a screenshot:
// the places whose colour is not the probe's grey.
QList<int> marks(const QImage &image, Qt::Orientation along, int index)
{
    const QColor grey(0x60, 0x60, 0x60);
    QList<int> found;
    const int length = along == Qt::Horizontal ? image.width() : image.height();
    for (int i = 0; i < length; ++i) {
        const QColor colour = along == Qt::Horizontal ? image.pixelColor(i, index) : image.pixelColor(index, i);
        if (colour != grey)
            found.append(i);
    }
    return found;
}

// Every mark lies near one of the places, and each place has one. A line with its
// halo is three units wide: six pixels at scale 2.
bool marksNear(const QList<int> &found, const QList<int> &places, int scale = 1)
{
    const int tolerance = 3 * scale;
    const auto near = [tolerance](int a, int b) { return qAbs(a - b) <= tolerance; };
    for (int mark : found) {
        if (std::none_of(places.cbegin(), places.cend(), [&](int place) { return near(mark, place); }))
            return false;
    }
    return std::all_of(places.cbegin(), places.cend(), [&](int place) {
        return std::any_of(found.cbegin(), found.cend(), [&](int mark) { return near(mark, place); });
    });
}

QString describe(const QList<int> &marks)
{
    QStringList parts;
    for (int mark : marks.mid(0, 40))
        parts.append(QString::number(mark));
    return parts.join(u' ');
}

} // namespace

class TestWaylandPerform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();
    void everyActionOnTwoOutputs_data();
    void everyActionOnTwoOutputs();
    void clicksCarryNoHeldModifiers_data();
    void clicksCarryNoHeldModifiers();
    void heldMoveRepeatsUntilReleased();
    void overlayStepsAndConfirms();
    void overlayMovesToTheScaledOutputAndEscapes();
    void outputRemovedUnderTheOverlay();
    void outputRemovedDuringRepetition();
    void portalShortcutsDriveControls();

private:
    // sway with both outputs, the probe, and a corvane of this sway's.
    bool setUp();
    bool perform(const QString &name, bool release = false);
    // Performs the control and waits until the probe sees the pointer on that pixel.
    bool performLandsAt(const QString &name, const QString &output, const QPoint &pixel);
    // The pointer moved aside by the probe's own device, then centred by Corvane: it
    // lands at the primary's centre even when it was there already. Corvane must
    // believe it on the primary: every test leaves it there.
    bool centreOnPrimary();
    // From there to the middle of the turned output.
    bool centreOnTurned();
    // Where the probe last saw the pointer, on which output.
    QPointF lastPointer(QString *output = nullptr);
    // The probe's keyboard reaches its own window again (the overlay let go).
    bool probeHasKeyboard();
    bool pressKey(int key);

    QVTestWaylandSession m_session;
    std::unique_ptr<QVCorvaneProcess> m_corvane;
    const QVTestSway *m_corvaneSway = nullptr;
    QTemporaryDir m_directory;
    QString m_error;
};

void TestWaylandPerform::initTestCase()
{
    const QString missing = QVTestSway::missingProgram();
    if (!missing.isEmpty())
        QSKIP(qPrintable(QStringLiteral("%1 is not installed (scripts/install-deps.sh --tests)").arg(missing)));
    QVERIFY(m_directory.isValid());
}

void TestWaylandPerform::cleanup()
{
    if (QTest::currentTestFailed()) {
        if (m_corvane)
            qWarning().noquote() << "corvane said:" << m_corvane->log();
        m_corvane.reset();
        m_session.reset();
    }
}

void TestWaylandPerform::cleanupTestCase()
{
    if (m_corvane)
        QCOMPARE(m_corvane->stop(SIGTERM), 0);
}

bool TestWaylandPerform::setUp()
{
    if (!m_session.setUp(Outputs::HeadlessThenX11, QVTestWaylandSession::scaledAndTurned(), true, &m_error))
        return false;
    if (m_corvane && m_corvaneSway == &m_session.sway() && m_corvane->isRunning())
        return true;
    const QString settings = m_directory.filePath(QStringLiteral("settings.json"));
    QVCorvaneProcess::writeSettings(
        settings, { { QStringLiteral("Custom Controls"), controls() }, { QStringLiteral("Stealth Mode"), true } });
    m_corvane = std::make_unique<QVCorvaneProcess>(m_session.sway().clientEnvironment(), settings);
    m_corvaneSway = &m_session.sway();
    if (!m_corvane->start()) {
        m_error = QStringLiteral("corvane did not start: %1").arg(m_corvane->log());
        return false;
    }
    if (!m_corvane->log().contains(QLatin1String("started on Wayland display"))) {
        m_error = QStringLiteral("corvane chose another back end: %1").arg(m_corvane->log());
        return false;
    }
    return true;
}

bool TestWaylandPerform::perform(const QString &name, bool release)
{
    QString errors;
    const int code = m_corvane->perform(name, release, &errors);
    if (code != 0)
        qWarning().noquote() << "corvane --perform" << name << "exited with" << code << errors;
    return code == 0;
}

bool TestWaylandPerform::performLandsAt(const QString &name, const QString &output, const QPoint &pixel)
{
    m_session.probe().skipAll();
    return perform(name) && perform(name, true)
        && m_session.probe().waitFor(QVTestWaylandSession::pointerAt(output, pixel)).hasMatch();
}

bool TestWaylandPerform::centreOnPrimary()
{
    QVTestWaylandProbe &probe = m_session.probe();
    probe.skipAll();
    return probe.send(QStringLiteral("move 10 10"))
        && probe.waitFor(QVTestWaylandSession::pointerAt(primary, QPoint(10, 10))).hasMatch()
        && performLandsAt(QStringLiteral("center"), primary, QPoint(896, 540));
}

bool TestWaylandPerform::centreOnTurned()
{
    return centreOnPrimary() && performLandsAt(QStringLiteral("next"), turned, QPoint(360, 640));
}

QPointF TestWaylandPerform::lastPointer(QString *output)
{
    static const QRegularExpression position(QStringLiteral("^(?:enter|motion) (\\S+) ([\\d.]+) ([\\d.]+)$"));
    const QStringList lines = m_session.probe().lines();
    for (auto line = lines.crbegin(); line != lines.crend(); ++line) {
        const QRegularExpressionMatch match = position.match(*line);
        if (!match.hasMatch())
            continue;
        if (output)
            *output = match.captured(1);
        return { match.captured(2).toDouble(), match.captured(3).toDouble() };
    }
    return { -1, -1 };
}

bool TestWaylandPerform::pressKey(int key)
{
    return m_session.probe().send(QStringLiteral("press %1").arg(key))
        && m_session.probe().send(QStringLiteral("release %1").arg(key));
}

bool TestWaylandPerform::probeHasKeyboard()
{
    // Shift changes the probe's modifiers only where its window has the keyboard.
    QVTestWaylandProbe &probe = m_session.probe();
    for (int attempt = 0; attempt < 20; ++attempt) {
        probe.skipAll();
        if (!pressKey(keyLeftShift))
            return false;
        if (probe.waitFor(QStringLiteral("modifiers Shift"), 200).hasMatch())
            return true;
    }
    return false;
}

void TestWaylandPerform::everyActionOnTwoOutputs_data()
{
    // Each step: control, then the output and pixel the pointer must reach.
    QTest::addColumn<QStringList>("steps");
    // The primary is 1792x1080 at the origin.
    QTest::newRow("on the primary") << QStringList {
        QStringLiteral("center HEADLESS-1 896 540"),
        QStringLiteral("right HEADLESS-1 906 540"),
        QStringLiteral("upleft HEADLESS-1 899 533"), // 7 each way: 10 along the diagonal
        QStringLiteral("topright HEADLESS-1 1791 0"),
        QStringLiteral("bottomleft HEADLESS-1 0 1079"),
    };
    // The other is 720x1280 units (2560x1440 pixels at scale 2, turned) at 1792,0.
    QTest::newRow("on the scaled and turned output") << QStringList {
        QStringLiteral("center HEADLESS-1 896 540"),
        QStringLiteral("next X11-1 360 640"),
        QStringLiteral("right X11-1 370 640"),
        QStringLiteral("rightedge X11-1 719 640"),
        QStringLiteral("topright X11-1 719 0"),
        QStringLiteral("center X11-1 360 640"),
        QStringLiteral("next HEADLESS-1 896 540"),
    };
}

void TestWaylandPerform::everyActionOnTwoOutputs()
{
    QFETCH(QStringList, steps);
    QVERIFY2(setUp(), qPrintable(m_error));
    for (const QString &step : std::as_const(steps)) {
        const QStringList parts = step.split(u' ');
        QVERIFY2(performLandsAt(parts.at(0), parts.at(1), QPoint(parts.at(2).toInt(), parts.at(3).toInt())),
            qPrintable(step));
    }
}

void TestWaylandPerform::clicksCarryNoHeldModifiers_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("button");
    QTest::newRow("click") << QStringLiteral("click") << 272; // BTN_LEFT
    QTest::newRow("right click") << QStringLiteral("rightclick") << 273; // BTN_RIGHT
}

void TestWaylandPerform::clicksCarryNoHeldModifiers()
{
    QFETCH(QString, name);
    QFETCH(int, button);
    QVERIFY2(setUp(), qPrintable(m_error));
    QVERIFY(centreOnPrimary());
    QVTestWaylandProbe &probe = m_session.probe();
    // The user holds Shift, as with a key binding on Shift.
    QVERIFY(probe.send(QStringLiteral("press %1").arg(keyLeftShift)));
    QVERIFY(probe.waitFor(QStringLiteral("modifiers Shift")).hasMatch());
    QVERIFY(perform(name));
    QVERIFY(probe.waitFor(QStringLiteral("button HEADLESS-1 %1 1 none").arg(button)).hasMatch());
    QVERIFY(probe.waitFor(QStringLiteral("button HEADLESS-1 %1 0 none").arg(button)).hasMatch());
    // No client learns what the user's keyboard holds: the user's next key tells the
    // clicked window again, Shift still held included.
    QVERIFY(pressKey(keyA));
    QVERIFY(probe.waitFor(QStringLiteral("modifiers Shift")).hasMatch());
    QVERIFY(probe.send(QStringLiteral("release %1").arg(keyLeftShift)));
    QVERIFY(probe.waitFor(QStringLiteral("modifiers none")).hasMatch());
    QVERIFY(perform(name, true));
}

void TestWaylandPerform::heldMoveRepeatsUntilReleased()
{
    QVERIFY2(setUp(), qPrintable(m_error));
    QVERIFY(centreOnPrimary());
    QVERIFY(perform(QStringLiteral("right")));
    // Ten pixels a step: the repetition has begun once it is past the first.
    QTRY_VERIFY_WITH_TIMEOUT(lastPointer().x() >= 936, 5000);
    QVERIFY(perform(QStringLiteral("right"), true));
    QTest::qWait(150); // a step already on its way may still land
    const QPointF released = lastPointer();
    QTest::qWait(400);
    QCOMPARE(lastPointer(), released);
    QCOMPARE(released.y(), 540.5);
}

void TestWaylandPerform::overlayStepsAndConfirms()
{
    QVERIFY2(setUp(), qPrintable(m_error));
    QVERIFY(centreOnPrimary());
    QVERIFY(perform(QStringLiteral("section")));
    const QVTestSway &sway = m_session.sway();
    // The whole primary halved: a cross through its centre.
    QTRY_VERIFY2(marksNear(marks(sway.screenshot(primary), Qt::Horizontal, 100), { 896 }),
        qPrintable(describe(marks(sway.screenshot(primary), Qt::Horizontal, 100))));
    QVERIFY(marksNear(marks(sway.screenshot(primary), Qt::Vertical, 100), { 540 }));

    // Right keeps the right half, then Down its lower half; the earlier lines stay.
    QVERIFY(pressKey(keyRight));
    QTRY_VERIFY(marksNear(marks(sway.screenshot(primary), Qt::Horizontal, 100), { 896, 1344 }));
    QVERIFY(pressKey(keyDown));
    QTRY_VERIFY(marksNear(marks(sway.screenshot(primary), Qt::Vertical, 1700), { 540, 810 }));

    // Return puts the pointer in the middle of the last section and closes.
    m_session.probe().skipAll();
    QVERIFY(pressKey(keyReturn));
    QVERIFY(m_session.probe().waitFor(QVTestWaylandSession::pointerAt(primary, QPoint(1344, 810))).hasMatch());
    QTRY_VERIFY(marks(sway.screenshot(primary), Qt::Horizontal, 100).isEmpty());
    QVERIFY(probeHasKeyboard());
}

void TestWaylandPerform::overlayMovesToTheScaledOutputAndEscapes()
{
    QVERIFY2(setUp(), qPrintable(m_error));
    QVERIFY(centreOnPrimary());
    QVERIFY(perform(QStringLiteral("section")));
    const QVTestSway &sway = m_session.sway();
    QTRY_VERIFY(marksNear(marks(sway.screenshot(primary), Qt::Horizontal, 100), { 896 }));

    // Tab takes the overlay, keyboard and all, to the next output, where it is
    // drawn at scale 2: the cross at pixel 720 across, 1280 down.
    QVERIFY(pressKey(keyTab));
    QTRY_VERIFY2(marksNear(marks(sway.screenshot(turned), Qt::Horizontal, 200), { 720 }, 2),
        qPrintable(describe(marks(sway.screenshot(turned), Qt::Horizontal, 200))));
    QVERIFY(marks(sway.screenshot(primary), Qt::Horizontal, 100).isEmpty());
    QVERIFY(pressKey(keyDown));
    QTRY_VERIFY2(marksNear(marks(sway.screenshot(turned), Qt::Vertical, 200), { 1280, 1920 }, 2),
        qPrintable(describe(marks(sway.screenshot(turned), Qt::Vertical, 200))));

    // Escape closes and leaves the pointer where it was.
    m_session.probe().skipAll();
    QVERIFY(pressKey(keyEscape));
    QTRY_VERIFY(marks(sway.screenshot(turned), Qt::Horizontal, 200).isEmpty());
    QVERIFY(probeHasKeyboard());
    QString output;
    QCOMPARE(lastPointer(&output), QPointF(896.5, 540.5));
    QCOMPARE(output, primary);
}

void TestWaylandPerform::outputRemovedUnderTheOverlay()
{
    QVERIFY2(setUp(), qPrintable(m_error));
    QVERIFY(centreOnTurned());
    QVERIFY(perform(QStringLiteral("section")));
    const QVTestSway &sway = m_session.sway();
    QTRY_VERIFY(!marks(sway.screenshot(turned), Qt::Horizontal, 200).isEmpty());

    QVERIFY2(sway.removeX11Output(&m_error), qPrintable(m_error));
    m_session.discard(); // the next test needs the output back
    // The overlay went with its output and gave the keyboard back.
    QVERIFY(probeHasKeyboard());
    QVERIFY(m_corvane->isRunning());
    // The next one opens on the output that is left, under the pointer the compositor moved there.
    QVERIFY(perform(QStringLiteral("section")));
    QTRY_VERIFY(!marks(sway.screenshot(primary), Qt::Horizontal, 100).isEmpty());
    QVERIFY(pressKey(keyEscape));
    QTRY_VERIFY(marks(sway.screenshot(primary), Qt::Horizontal, 100).isEmpty());
    QVERIFY(performLandsAt(QStringLiteral("center"), primary, QPoint(896, 540)));
}

void TestWaylandPerform::outputRemovedDuringRepetition()
{
    QVERIFY2(setUp(), qPrintable(m_error));
    QVERIFY(centreOnTurned());
    QVERIFY(perform(QStringLiteral("right")));
    QTRY_VERIFY_WITH_TIMEOUT(lastPointer().x() >= 400, 5000);

    QVERIFY2(m_session.sway().removeX11Output(&m_error), qPrintable(m_error));
    m_session.discard();
    QTest::qWait(200); // repetitions on the output that is left
    QVERIFY(perform(QStringLiteral("right"), true));
    QVERIFY(m_corvane->isRunning());
    QVERIFY(performLandsAt(QStringLiteral("center"), primary, QPoint(896, 540)));
}

// Where the desktop's shortcut portal fires (Hyprland here, played by sway and a
// fake portal on a private bus), the hot key goes to the portal, and its press and
// release drive the control as a key held down would.
void TestWaylandPerform::portalShortcutsDriveControls()
{
    QVERIFY2(setUp(), qPrintable(m_error));
    QVERIFY(centreOnPrimary());
    QVTestSessionBus bus;
    QVERIFY2(bus.start(&m_error), qPrintable(m_error));
    QProcess portal;
    QProcessEnvironment portalEnvironment = QProcessEnvironment::systemEnvironment();
    portalEnvironment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
    portal.setProcessEnvironment(portalEnvironment);
    portal.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    portal.start(QStringLiteral("/usr/bin/python3"), { QStringLiteral(CORVANE_FAKE_PORTAL) });
    const auto stopPortal = qScopeGuard([&portal] {
        if (portal.state() == QProcess::Running && portal.processId() > 0) {
            ::kill(pid_t(portal.processId()), SIGTERM);
            portal.waitForFinished(5000);
        }
    });
    const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
    QTRY_VERIFY_WITH_TIMEOUT(bus.connection().interface()->isServiceRegistered(service).value(), 10000);

    // Move Right by 10 on Ctrl+Alt+Right.
    const QString settings = m_directory.filePath(QStringLiteral("portal.json"));
    QVCorvaneProcess::writeSettings(settings,
        { { QStringLiteral("Custom Controls"),
              QJsonArray { QVCorvaneProcess::control(31, 114, 0x40000 | 0x80000, // Control, Option
                  { { QStringLiteral("Move Direction"), 5 }, { QStringLiteral("Move Delta"), 10 } }) } },
            { QStringLiteral("Stealth Mode"), true } });
    QProcessEnvironment environment = m_session.sway().clientEnvironment();
    environment.insert(QStringLiteral("XDG_CURRENT_DESKTOP"), QStringLiteral("Hyprland"));
    QVCorvaneProcess corvane(environment, settings);
    corvane.joinSessionBus(bus.address());
    QVERIFY2(corvane.start(), qPrintable(corvane.log()));
    QVERIFY2(corvane.log().contains(QLatin1String("hot keys: global shortcuts portal")), qPrintable(corvane.log()));

    const auto fakePortal = [&bus](const QString &method, const QVariantList &arguments = {}) {
        QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Desktop"),
            QStringLiteral("/org/freedesktop/portal/desktop"), QStringLiteral("org.corvane.test.FakePortal"), method);
        call.setArguments(arguments);
        const QDBusMessage reply = bus.connection().call(call);
        return reply.arguments().value(0);
    };
    // The desktop got the key as the preferred trigger.
    const auto bound
        = [&fakePortal] { return qdbus_cast<QMap<QString, QString>>(fakePortal(QStringLiteral("Bound"))); };
    QTRY_VERIFY2_WITH_TIMEOUT(bound().size() == 1, qPrintable(corvane.log()), 10000);
    QCOMPARE(bound().first(), QStringLiteral("CTRL+ALT+Right"));
    const QString shortcut = bound().firstKey();
    const QString session
        = qdbus_cast<QList<QDBusObjectPath>>(fakePortal(QStringLiteral("Sessions"))).constFirst().path();

    // Pressed: one step at once, more while held; released: no more.
    m_session.probe().skipAll();
    fakePortal(QStringLiteral("Fire"), { QVariant::fromValue(QDBusObjectPath(session)), shortcut, true, QString() });
    QVERIFY(m_session.probe().waitFor(QVTestWaylandSession::pointerAt(primary, QPoint(906, 540))).hasMatch());
    QTRY_VERIFY_WITH_TIMEOUT(lastPointer().x() >= 936, 5000);
    fakePortal(QStringLiteral("Fire"), { QVariant::fromValue(QDBusObjectPath(session)), shortcut, false, QString() });
    QTest::qWait(150);
    const QPointF released = lastPointer();
    QTest::qWait(400);
    QCOMPARE(lastPointer(), released);
    QCOMPARE(corvane.stop(SIGTERM), 0);
    QVERIFY(performLandsAt(QStringLiteral("center"), primary, QPoint(896, 540)));
}

QTEST_GUILESS_MAIN(TestWaylandPerform)
#include "tst_wayland_perform.moc"
