#include "QVFakeClock.h"
#include "QVFakeFadingWindow.h"
#include "QVUserDefaults.h"
#include "QVWindowAlphaValueAnimationManager.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr double step = 0.02;
const QByteArrayList appeared{"willAppear", "windowWillAppear", "didAppear", "windowDidAppear"};
const QByteArrayList vanished{"willVanish", "windowWillVanish", "didVanish", "windowDidVanish"};

struct Fixture {
    explicit Fixture(double alpha = 1.0, bool hasReference = false)
    {
        window.alpha = alpha;
        window.hasReference = hasReference;
    }

    QVFakeClock clock;
    QVFakeFadingWindow window;
    QList<double> sleeps;
    QVWindowAlphaValueAnimationManager manager{
        &window, [this] { return std::make_unique<QVFakeClock::Performer>(clock); },
        [this](double seconds) { sleeps.append(seconds), clock.now += seconds; }};
};

} // namespace

class TestWindowFade final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fadeEndsExactlyOnBound_data()
    {
        QTest::addColumn<bool>("appear");
        QTest::addColumn<double>("target");
        QTest::addColumn<double>("quantum");
        QTest::addColumn<double>("end");
        QTest::addColumn<int>("steps");
        QTest::newRow("appear to 1.0") << true << 1.0 << 0.05 << 1.0 << 20;
        QTest::newRow("appear to 0.995 ends opaque") << true << 0.995 << 0.05 << 1.0 << 20;
        QTest::newRow("appear to 0.5") << true << 0.5 << 0.05 << 0.5 << 10;
        QTest::newRow("appear by 0.1") << true << 1.0 << 0.1 << 1.0 << 10;
        QTest::newRow("vanish to 0.005 ends invisible") << false << 0.005 << 0.05 << 0.0 << 20;
        QTest::newRow("vanish to 0.3") << false << 0.3 << 0.05 << 0.3 << 14;
    }

    void fadeEndsExactlyOnBound()
    {
        QFETCH(bool, appear);
        QFETCH(double, target);
        QFETCH(double, end);
        QFETCH(int, steps);
        const double start = appear ? 0.0 : 1.0;
        Fixture f(start, true);
        QFETCH(double, quantum);
        f.window.quantum = quantum;
        f.window.referenceIsMainOrKey = true;
        f.window.mouse = QPointF(150, 150); // over the window

        QVERIFY(appear ? f.manager.appearRegardless(true, true, target, false)
                       : f.manager.vanishRegardless(true, true, target, false, true));
        // The first step is taken at once, each further one a step interval later.
        f.clock.advance((steps - 1) * step - 0.001);
        QCOMPARE(f.window.alphas.size(), steps - 1);
        for (double alpha : std::as_const(f.window.alphas))
            QVERIFY(alpha > qMin(start, end) && alpha < qMax(start, end));
        f.clock.advance(1.0);
        QCOMPARE(f.window.alphas.size(), steps);
        QCOMPARE(f.window.alpha, end); // exactly, not within a rounding error
        // A regardless fade neither waits for the pointer nor hides it, nor closes, nor vanishes later.
        QCOMPARE(f.window.log, appear ? appeared : vanished);
    }

    void synchronousFade()
    {
        Fixture f;
        f.window.visible = false;
        QVERIFY(f.manager.orderFrontAndFadeInToAlphaValue(1.0, true));
        // Done on return: a hidden window starts from 0 and sleeps between its 20 steps.
        QCOMPARE(f.window.alphas.first(), 0.0);
        QCOMPARE(f.window.alphas.size(), 1 + 20);
        QCOMPARE(f.window.alpha, 1.0);
        QCOMPARE(f.sleeps, QList<double>(19, step));
        QCOMPARE(f.window.log, QByteArrayList{"orderFront"} + appeared);

        f.window.quantum = 0.1;
        QVERIFY(f.manager.vanishRegardless(true, true, 0.0, true, false));
        QCOMPARE(f.window.alpha, 0.0);
        QCOMPARE(f.sleeps.size(), 19 + 9);
        f.clock.advance(10.0);
        QCOMPARE(f.window.alphas.size(), 21 + 10);
    }

    void withoutReferenceWindowOnlyRegardless()
    {
        Fixture f(0.3);
        QVERIFY(!f.manager.appearWithReferenceWindowByFadingIn(true));
        QVERIFY(!f.manager.appearRegardless(false, false, 1.0, false));
        QVERIFY(!f.manager.vanishRegardless(false, false, 0.0, false, true));
        f.manager.vanishWithReferenceWindow();
        f.clock.advance(10.0);
        QVERIFY(f.window.log.isEmpty());
        QVERIFY(f.window.alphas.isEmpty());
    }

    void automaticVanishAfterInterval_data()
    {
        QTest::addColumn<QJsonValue>("setting");
        QTest::addColumn<double>("interval");
        QTest::newRow("missing") << QJsonValue() << 5.0;
        QTest::newRow("0") << QJsonValue(0) << 5.0;
        QTest::newRow("negative") << QJsonValue(-3) << 5.0;
        QTest::newRow("1") << QJsonValue(1) << 1.0;
        QTest::newRow("12") << QJsonValue(12) << 12.0;
    }

    void automaticVanishAfterInterval()
    {
        QFETCH(QJsonValue, setting);
        QFETCH(double, interval);
        QTemporaryDir directory;
        QVUserDefaults defaults(directory.filePath(QStringLiteral("settings.json")));
        defaults.setObject(setting, QStringLiteral("Window Vanish Interval"));
        QVUserDefaults::setStandardUserDefaults(&defaults);
        Fixture f(0.0, true);

        QVERIFY(f.manager.appearWithReferenceWindowByFadingIn(false));
        QCOMPARE(f.window.alpha, 1.0);
        f.clock.advance(interval - 0.01);
        QCOMPARE(f.window.log, appeared);
        f.clock.advance(0.02 + 20 * step);
        QCOMPARE(f.window.alpha, 0.0);
        QCOMPARE(f.window.log, appeared + vanished); // vanishing alone does not close
        QVUserDefaults::setStandardUserDefaults(nullptr);
    }

    void automaticVanishWaitsForHoveringPointer_data()
    {
        QTest::addColumn<bool>("mainOrKey");
        QTest::addColumn<bool>("applicationActive");
        QTest::addColumn<bool>("hovering");
        QTest::newRow("key, active, hovered: waits") << true << true << true;
        QTest::newRow("key, active, not hovered: hides pointer") << true << true << false;
        QTest::newRow("key, inactive, hovered") << true << false << true;
        QTest::newRow("not key, active, hovered") << false << true << true;
    }

    void automaticVanishWaitsForHoveringPointer()
    {
        QFETCH(bool, mainOrKey);
        QFETCH(bool, applicationActive);
        QFETCH(bool, hovering);
        Fixture f(0.0, true);
        f.window.referenceIsMainOrKey = mainOrKey;
        f.window.applicationActive = applicationActive;
        f.window.mouse = hovering ? QPointF(299, 150) : QPointF(300, 150); // the right edge is outside
        const bool waits = mainOrKey && applicationActive && hovering;

        QVERIFY(f.manager.appearWithReferenceWindowByFadingIn(false));
        f.clock.advance(5.0);
        QCOMPARE(f.window.log.contains("willVanish"), !waits);
        QCOMPARE(f.window.log.contains("hideMouse"), mainOrKey && applicationActive && !hovering);
        if (!waits)
            return;
        f.clock.advance(5.0); // each vanish interval tries again
        QCOMPARE(f.window.log, appeared);
        f.window.mouse = QPointF(0, 0);
        f.clock.advance(5.0);
        QCOMPARE(f.window.log.sliced(appeared.size()), (QByteArrayList{"hideMouse", "willVanish", "windowWillVanish"}));
    }

    void vanishAndCloseStartsOnce()
    {
        Fixture f;
        f.manager.vanishAndClose();
        f.manager.vanishAndClose();
        QVERIFY(f.window.ignoresMouse); // clicks go through to what lies beneath
        f.clock.advance(0.005);
        QVERIFY(f.window.log.isEmpty());
        f.clock.advance(0.005 + 3 * step);
        f.manager.vanishAndClose(); // while fading: neither restarts nor closes twice
        f.clock.advance(20 * step);
        QCOMPARE(f.window.alpha, 0.0);
        QCOMPARE(f.window.log, vanished + QByteArrayList{"close"});
        QVERIFY(!f.window.ignoresMouse);
        QVERIFY(!f.manager.isVanishingToClose());

        // A hidden window is left alone; one that already ignored the mouse keeps doing so.
        f.window.log.clear();
        f.manager.vanishAndClose();
        f.clock.advance(1.0);
        QVERIFY(f.window.log.isEmpty());
        f.window.visible = f.window.ignoresMouse = true;
        f.manager.vanishAndClose();
        f.clock.advance(1.0);
        QCOMPARE(f.window.log.count("close"), 1);
        QVERIFY(f.window.ignoresMouse);
    }

    void appearCallsOffVanishAndClose()
    {
        Fixture f;
        f.manager.vanishAndClose();
        f.clock.advance(0.01 + 5 * step);
        QVERIFY(f.window.alpha < 0.9);
        QVERIFY(f.manager.appearRegardless(true, true, 1.0, false));
        QVERIFY(!f.manager.isVanishingToClose());
        QVERIFY(!f.window.ignoresMouse);
        f.clock.advance(1.0);
        QCOMPARE(f.window.alpha, 1.0);
        QVERIFY(!f.window.log.contains("close"));

        // Called off before it started, nothing vanishes either.
        f.window.log.clear();
        f.manager.vanishAndClose();
        f.manager.orderFrontWithAlpha(1.0);
        f.clock.advance(1.0);
        QCOMPARE(f.window.log, QByteArrayList{"orderFront"});
        QVERIFY(!f.window.ignoresMouse);
    }

    void vanishAndCloseAfterNextEvent()
    {
        Fixture f;
        QObject receiver;
        f.manager.vanishAndCloseAfterNextEvent();
        QEvent timer(QEvent::Timer);
        QCoreApplication::sendEvent(&receiver, &timer);
        QVERIFY(!f.manager.isVanishingToClose());
        QEvent keyPress(QEvent::KeyPress);
        QCoreApplication::sendEvent(&receiver, &keyPress);
        QVERIFY(f.manager.isVanishingToClose());
        f.clock.advance(100.0);
        QCOMPARE(f.window.log.count("close"), 1);

        // Without any input, it gives up waiting after a minute.
        f.window.visible = true;
        f.manager.vanishAndCloseAfterNextEvent();
        f.clock.advance(59.0);
        QVERIFY(!f.manager.isVanishingToClose());
        f.clock.advance(1.0);
        QVERIFY(f.manager.isVanishingToClose());
    }
};

QTEST_GUILESS_MAIN(TestWindowFade)
#include "tst_windowfade.moc"
