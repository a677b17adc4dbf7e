// The Wayland back end against headless sway 1.7, in this process, with the probe
// client reporting what reaches its full-screen window on every output.
#include "QVTestWaylandSession.h"

#include <QtTest>

#include <cmath>

namespace
{

using Outputs = QVTestSway::Outputs;

QStringList scaledAndTurned()
{
    return QVTestWaylandSession::scaledAndTurned();
}

QStringList describe(const QVDisplayList &displays)
{
    QStringList lines;
    for (const QVDisplay &display : displays) {
        const QVRect &f = display.frame;
        lines.append(QStringLiteral("%1 %2 %3 %4 %5").arg(display.name).arg(f.x).arg(f.y).arg(f.width).arg(f.height));
    }
    return lines;
}

QStringList describe(const QList<QVWaylandOutput> &outputs)
{
    QStringList lines;
    for (const QVWaylandOutput &output : outputs) {
        lines.append(QStringLiteral("%1 %2x%3 scale %4 transform %5")
                         .arg(output.name)
                         .arg(output.pixelSize.width())
                         .arg(output.pixelSize.height())
                         .arg(output.scale)
                         .arg(output.transform));
    }
    return lines;
}

QString pointerAt(const QString &output, const QPoint &pixel)
{
    return QVTestWaylandSession::pointerAt(output, pixel);
}

} // namespace

Q_DECLARE_METATYPE(Outputs)
Q_DECLARE_METATYPE(QVPoint)

class TestWaylandPlatform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void openingWithoutACompositorFails();
    void displays_data();
    void displays();
    void motionLandsOnItsPixel_data();
    void motionLandsOnItsPixel();
    void clickCarriesNoHeldModifiers_data();
    void clickCarriesNoHeldModifiers();
    void outputRemovedWhileRunning_data();
    void outputRemovedWhileRunning();
    void repeatThresholds_data();
    void repeatThresholds();
    void hotKeysAreLeftToTheCompositor();
    void compositorGoneMidway();

private:
    bool setUp(Outputs outputs, const QStringList &commands, bool withProbe = true)
    {
        return m_session.setUp(outputs, commands, withProbe, &m_error);
    }

    QVTestWaylandSession m_session;
    QString m_error;
};

void TestWaylandPlatform::initTestCase()
{
    const QString missing = QVTestSway::missingProgram();
    if (!missing.isEmpty())
        QSKIP(qPrintable(QStringLiteral("%1 is not installed (scripts/install-deps.sh --tests)").arg(missing)));
}

void TestWaylandPlatform::cleanup()
{
    // A failed row leaves its rig to nobody.
    if (QTest::currentTestFailed())
        m_session.reset();
}

void TestWaylandPlatform::openingWithoutACompositorFails()
{
    QString error;
    QVERIFY(!QVWaylandPlatform::open(&error, QStringLiteral("/nonexistent/wayland-corvane")));
    QVERIFY2(error.contains(QLatin1String("/nonexistent/wayland-corvane")), qPrintable(error));
}

void TestWaylandPlatform::displays_data()
{
    QTest::addColumn<Outputs>("outputs");
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<QStringList>("displays");
    QTest::addColumn<QStringList>("described");

    QTest::newRow("one output") << Outputs::Headless
                                << QStringList { QStringLiteral(
                                       "output HEADLESS-1 resolution 1920x1080 position 0 0 scale 1") }
                                << QStringList { QStringLiteral("HEADLESS-1 0 0 1920 1080") }
                                << QStringList { QStringLiteral("HEADLESS-1 1920x1080 scale 1 transform 0") };
    // sway turns clockwise, wl_output counts counter-clockwise: its 90 is wl_output's 270 (3).
    QTest::newRow("scaled and turned beside")
        << Outputs::HeadlessThenX11 << scaledAndTurned()
        << QStringList { QStringLiteral("HEADLESS-1 0 0 1792 1080"), QStringLiteral("X11-1 1792 -200 720 1280") }
        << QStringList { QStringLiteral("HEADLESS-1 1792x1080 scale 1 transform 0"),
               QStringLiteral("X11-1 2560x1440 scale 2 transform 3") };
    // Logical size is 1920/1.5: wl_output's whole-number scale (2) would make it 960.
    QTest::newRow("fractional scale, primary off the origin")
        << Outputs::HeadlessThenX11
        << QStringList { QStringLiteral("output HEADLESS-1 resolution 1280x720 position 1280 300 scale 1"),
               QStringLiteral("output X11-1 resolution 1920x1080 position 0 0 scale 1.5") }
        << QStringList { QStringLiteral("HEADLESS-1 0 0 1280 720"), QStringLiteral("X11-1 -1280 300 1280 720") }
        << QStringList { QStringLiteral("HEADLESS-1 1280x720 scale 1 transform 0"),
               QStringLiteral("X11-1 1920x1080 scale 2 transform 0") };
    QTest::newRow("the first output offered is the primary")
        << Outputs::X11ThenHeadless
        << QStringList { QStringLiteral("output X11-1 resolution 1600x900 position 0 0 scale 1"),
               QStringLiteral("output HEADLESS-1 resolution 1920x1080 position 1600 0 scale 1") }
        << QStringList { QStringLiteral("X11-1 0 0 1600 900"), QStringLiteral("HEADLESS-1 1600 -180 1920 1080") }
        << QStringList { QStringLiteral("X11-1 1600x900 scale 1 transform 0"),
               QStringLiteral("HEADLESS-1 1920x1080 scale 1 transform 0") };
}

void TestWaylandPlatform::displays()
{
    QFETCH(Outputs, outputs);
    QFETCH(QStringList, commands);
    QFETCH(QStringList, displays);
    QFETCH(QStringList, described);
    QVERIFY2(setUp(outputs, commands, false), qPrintable(m_error));
    QCOMPARE(describe(m_session.platform().displays()), displays);
    QCOMPARE(describe(m_session.platform().outputs()), described);
}

void TestWaylandPlatform::motionLandsOnItsPixel_data()
{
    QTest::addColumn<QVPoint>("global");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QPoint>("pixel");

    const QString primary = QStringLiteral("HEADLESS-1");
    const QString turned = QStringLiteral("X11-1");
    QTest::newRow("on the primary") << QVPoint { 100, 200 } << primary << QPoint(100, 200);
    QTest::newRow("fractions floored") << QVPoint { 1000.7, 20.2 } << primary << QPoint(1000, 20);
    QTest::newRow("primary's last pixel") << QVPoint { 1791, 1079 } << primary << QPoint(1791, 1079);
    QTest::newRow("neighbour's first column") << QVPoint { 1792, 0 } << turned << QPoint(0, 0);
    QTest::newRow("scaled output's last pixel") << QVPoint { 2511, 1279 } << turned << QPoint(719, 1279);
    QTest::newRow("below the primary") << QVPoint { 1872, 1200 } << turned << QPoint(80, 1200);
    QTest::newRow("beside both, nearer the primary") << QVPoint { 1500, 1200 } << primary << QPoint(1500, 1079);
    QTest::newRow("above and left of all") << QVPoint { -50, -50 } << primary << QPoint(0, 0);
    QTest::newRow("far right") << QVPoint { 5000, 600 } << turned << QPoint(719, 600);
    QTest::newRow("not a number") << QVPoint { std::nan(""), 300 } << primary << QPoint(0, 300);
}

void TestWaylandPlatform::motionLandsOnItsPixel()
{
    QFETCH(QVPoint, global);
    QFETCH(QString, output);
    QFETCH(QPoint, pixel);
    QVERIFY2(setUp(Outputs::HeadlessThenX11, scaledAndTurned()), qPrintable(m_error));
    QVERIFY(m_session.park({ 7, 9 }, QStringLiteral("HEADLESS-1"), QPoint(7, 9)));

    QVERIFY(m_session.platform().postMouseMoved(global));
    QVERIFY(m_session.probe().waitFor(pointerAt(output, pixel)).hasMatch());
    // The model holds the same pixel, in window coordinates (y up from the primary's bottom).
    const int outputX = output == QLatin1String("X11-1") ? 1792 : 0;
    QCOMPARE(m_session.platform().mouseLocation(), (QVPoint { double(outputX + pixel.x()), double(1080 - pixel.y()) }));
    QVERIFY(m_session.platform().isMouseLocationApproximate());
}

void TestWaylandPlatform::clickCarriesNoHeldModifiers_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("modifier");
    QTest::addColumn<bool>("rightButton");
    QTest::addColumn<bool>("privateSource");
    QTest::addColumn<QString>("arrives");

    // Evdev key codes: 29 left Control, 42 left Shift, 56 left Alt, 125 left Super.
    const QString none = QStringLiteral("none");
    QTest::newRow("Control, left button") << 29 << QStringLiteral("Control") << false << true << none;
    QTest::newRow("Shift, right button") << 42 << QStringLiteral("Shift") << true << true << none;
    QTest::newRow("Alt") << 56 << QStringLiteral("Mod1") << false << true << none;
    QTest::newRow("Super") << 125 << QStringLiteral("Mod4") << false << true << none;
    // The probe does see held modifiers: without the private source they come along.
    QTest::newRow("Control, not private")
        << 29 << QStringLiteral("Control") << false << false << QStringLiteral("Control");
}

void TestWaylandPlatform::clickCarriesNoHeldModifiers()
{
    QFETCH(int, key);
    QFETCH(QString, modifier);
    QFETCH(bool, rightButton);
    QFETCH(bool, privateSource);
    QFETCH(QString, arrives);
    QVERIFY2(setUp(Outputs::Headless, { QStringLiteral("output HEADLESS-1 resolution 1280x720 position 0 0 scale 1") }),
        qPrintable(m_error));
    QVERIFY(m_session.park({ 300, 200 }, QStringLiteral("HEADLESS-1"), QPoint(300, 200)));

    // Another keyboard (the probe's) holds the modifier, as the user's hand would.
    QVERIFY(m_session.probe().send(QStringLiteral("press %1").arg(key)));
    QVERIFY(m_session.probe().waitFor(QStringLiteral("modifiers ") + modifier).hasMatch());
    QVERIFY(m_session.platform().postMouseButton(true, rightButton, privateSource));
    QVERIFY(m_session.platform().postMouseButton(false, rightButton, privateSource));
    const QString button = rightButton ? QStringLiteral("273") : QStringLiteral("272");
    const QRegularExpressionMatch press
        = m_session.probe().waitFor(QStringLiteral("button HEADLESS-1 %1 1 (\\S+)").arg(button));
    const QRegularExpressionMatch release
        = m_session.probe().waitFor(QStringLiteral("button HEADLESS-1 %1 0 (\\S+)").arg(button));
    QCOMPARE(press.captured(1), arrives);
    QCOMPARE(release.captured(1), arrives);
    QVERIFY(m_session.probe().send(QStringLiteral("release %1").arg(key)));
}

void TestWaylandPlatform::outputRemovedWhileRunning_data()
{
    QTest::addColumn<Outputs>("outputs");
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<QVPoint>("before");
    QTest::addColumn<QPoint>("beforePixel");
    QTest::addColumn<QVPoint>("modelAfter");
    QTest::addColumn<QVPoint>("after");
    QTest::addColumn<QPoint>("afterPixel");
    QTest::addColumn<int>("primaryWidth"); // of HEADLESS-1, the output left

    // The model follows the compositor, which puts a pointer left beside every output
    // on the nearest pixel of one.
    QTest::newRow("the second output goes")
        << Outputs::HeadlessThenX11 << scaledAndTurned() << QVPoint { 2300, 1000 } << QPoint(508, 1000)
        << QVPoint { 1791, 80 } << QVPoint { 2300, 500 } << QPoint(1791, 500) << 1792;
    // The next output becomes the primary: window and global coordinates start there.
    QTest::newRow("the primary goes")
        << Outputs::X11ThenHeadless
        << QStringList { QStringLiteral("output X11-1 resolution 1600x900 position 0 0 scale 1"),
               QStringLiteral("output HEADLESS-1 resolution 1920x1080 position 1600 0 scale 1") }
        << QVPoint { 100, 100 } << QPoint(100, 100) << QVPoint { 0, 980 } << QVPoint { 50, 60 } << QPoint(50, 60)
        << 1920;
}

void TestWaylandPlatform::outputRemovedWhileRunning()
{
    QFETCH(Outputs, outputs);
    QFETCH(QStringList, commands);
    QFETCH(QVPoint, before);
    QFETCH(QPoint, beforePixel);
    QFETCH(QVPoint, modelAfter);
    QFETCH(QVPoint, after);
    QFETCH(QPoint, afterPixel);
    QFETCH(int, primaryWidth);
    QVERIFY2(setUp(outputs, commands), qPrintable(m_error));
    QCOMPARE(m_session.platform().displays().size(), 2);
    QVERIFY(m_session.park(before, QStringLiteral("X11-1"), beforePixel));

    QVERIFY2(m_session.sway().removeX11Output(&m_error), qPrintable(m_error));
    QTRY_COMPARE(
        describe(m_session.platform().displays()).first(), QStringLiteral("HEADLESS-1 0 0 %1 1080").arg(primaryWidth));
    QCOMPARE(m_session.platform().displays().size(), 1);
    QCOMPARE(m_session.platform().mouseLocation(), modelAfter);
    // sway moves the removed output's workspace over, in front of the probe's window there.
    QVERIFY2(m_session.sway().command(QStringLiteral("[title=\"HEADLESS-1\"] focus"), &m_error), qPrintable(m_error));
    m_session.probe().skipAll();
    QVERIFY(m_session.platform().postMouseMoved(after));
    QVERIFY(m_session.probe().waitFor(pointerAt(QStringLiteral("HEADLESS-1"), afterPixel)).hasMatch());
    m_session.discard(); // the next row needs the output back
}

void TestWaylandPlatform::repeatThresholds_data()
{
    QTest::addColumn<Outputs>("outputs");
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<double>("initialTicks");
    QTest::addColumn<double>("repeatTicks");

    // The x11 back end brings a keyboard; 250 ms and 40 per second in ticks of 1/60 s.
    QTest::newRow("the seat's keyboard") << Outputs::HeadlessThenX11
                                         << QStringList { QStringLiteral("input type:keyboard repeat_delay 250"),
                                                QStringLiteral("input type:keyboard repeat_rate 40") }
                                         << 15.0 << 1.5;
    // Without one, the compositor's usual 600 ms and 25 per second.
    QTest::newRow("no keyboard") << Outputs::Headless << QStringList() << 36.0 << 2.4;
}

void TestWaylandPlatform::repeatThresholds()
{
    QFETCH(Outputs, outputs);
    QFETCH(QStringList, commands);
    QFETCH(double, initialTicks);
    QFETCH(double, repeatTicks);
    QVERIFY2(setUp(outputs, commands, false), qPrintable(m_error));
    QCOMPARE(m_session.platform().keyRepeatThresholds().initialTicks, initialTicks);
    QCOMPARE(m_session.platform().keyRepeatThresholds().repeatTicks, repeatTicks);
}

void TestWaylandPlatform::hotKeysAreLeftToTheCompositor()
{
    QVERIFY2(setUp(Outputs::Headless, {}, false), qPrintable(m_error));
    QVWaylandPlatform &platform = m_session.platform();
    QVERIFY(!platform.grantsHotKeys());
    QString reason;
    QVERIFY(!platform.registerHotKey({ 38, 0x1000, QVCapsLockRule::Ignored, 0, 1 }, &reason));
    QVERIFY2(reason.contains(QLatin1String("corvane --perform")), qPrintable(reason));
}

void TestWaylandPlatform::compositorGoneMidway()
{
    QVERIFY2(setUp(Outputs::Headless, {}, false), qPrintable(m_error));
    QVERIFY(m_session.platform().postMouseMoved({ 10, 10 }));
    m_session.stopSway();
    // The loss shows at the latest when a request cannot be written; nothing hangs or crashes.
    QTRY_VERIFY(!m_session.platform().postMouseMoved({ 20, 20 }));
    QVERIFY(!m_session.platform().postMouseButton(true, false, true));
    QCOMPARE(m_session.platform().displays().size(), 1);
}

QTEST_GUILESS_MAIN(TestWaylandPlatform)
#include "tst_wayland_platform.moc"
