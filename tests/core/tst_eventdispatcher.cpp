#include "QVEventDispatcher.h"
#include "QVFakeDelayedPerformer.h"
#include "QVFakePlatform.h"

#include <QTest>

namespace {

// A hot key press unless told otherwise.
QVEventRef makeEvent(quint64 handle = 1, int subtype = QVEvent::HotKeyPressed, int type = QVEvent::SystemDefined)
{
    auto event = std::make_shared<QVEvent>();
    event->type = type;
    event->subtype = subtype;
    event->data1 = handle;
    return event;
}

// A dispatcher whose engine claims events and asks for repetition as told.
struct Fixture {
    QVFakePlatform platform;
    QVFakeDelayedPerformer performer;
    QList<QPair<const QVEvent *, bool>> calls; // event, isRepetition
    QList<QVEventRef> dispatchedNormally;
    bool claim = true;
    bool repeat = true;
    QVEventDispatcher dispatcher{[this](const QVEvent *event, bool isRepetition, bool *shouldRepeat) {
                                     calls.append({event, isRepetition});
                                     *shouldRepeat |= claim && repeat;
                                     return claim;
                                 },
                                 [this](const QVEventRef &event) { dispatchedNormally.append(event); }, platform,
                                 performer};
};

} // namespace

class TestEventDispatcher final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void repetitionDelays_data();
    void repetitionDelays();
    void releaseAndUnclaimedEvents();
    void whatEndsOrRestartsRepetition();
};

void TestEventDispatcher::repetitionDelays_data()
{
    QTest::addColumn<double>("initialTicks");
    QTest::addColumn<double>("repeatTicks");
    QTest::addColumn<double>("firstDelay");
    QTest::addColumn<double>("laterDelay");

    QTest::newRow("15 and 2 ticks") << 15.0 << 2.0 << 0.25 << 1.0 / 30.0;
    QTest::newRow("both 0") << 0.0 << 0.0 << 0.5 << 0.5;
    QTest::newRow("no interval: the initial delay again") << 15.0 << 0.0 << 0.25 << 0.25;
    QTest::newRow("below 0.01 s is unusable") << 0.5 << 0.5 << 0.5 << 0.5;
}

void TestEventDispatcher::repetitionDelays()
{
    QFETCH(double, initialTicks);
    QFETCH(double, repeatTicks);
    QFETCH(double, firstDelay);
    QFETCH(double, laterDelay);

    Fixture f;
    f.platform.thresholds = {initialTicks, repeatTicks};
    const QVEventRef event = makeEvent();
    f.dispatcher.sendEvent(event);
    QVERIFY(f.performer.fire() && f.performer.fire());
    QCOMPARE(f.performer.requestedDelays, QList<double>({firstDelay, laterDelay, laterDelay}));
    const QList<QPair<const QVEvent *, bool>> calls{{event.get(), false}, {event.get(), true}, {event.get(), true}};
    QCOMPARE(f.calls, calls);
    QVERIFY(f.dispatchedNormally.isEmpty());
}

void TestEventDispatcher::releaseAndUnclaimedEvents()
{
    Fixture f;
    f.dispatcher.sendEvent(makeEvent());
    QVERIFY(f.performer.fire());
    f.dispatcher.sendEvent(makeEvent(1, QVEvent::HotKeyReleased));
    QVERIFY(!f.performer.pending && !f.dispatcher.eventToRepeat());
    QCOMPARE(f.calls.size(), 2); // the release never reaches the engine

    f.claim = false;
    const QList<QVEventRef> unclaimed{makeEvent(7), makeEvent(0, 0, QVEvent::KeyDown),
                                      makeEvent(0, 0, QVEvent::ScrollWheel)};
    for (const QVEventRef &event : unclaimed)
        f.dispatcher.sendEvent(event);
    f.dispatcher.sendEvent(makeEvent(7, QVEvent::HotKeyReleased));
    QCOMPARE(f.dispatchedNormally, unclaimed); // the same events; a release never
    QCOMPARE(f.calls.size(), 4);               // other types never reach the engine
    QCOMPARE(f.performer.requestedDelays.size(), 2);
}

void TestEventDispatcher::whatEndsOrRestartsRepetition()
{
    Fixture f;
    f.dispatcher.sendEvent(makeEvent(1));
    QVERIFY(f.performer.fire());
    const QVEventRef second = makeEvent(2); // a new press restarts with the initial delay
    f.dispatcher.sendEvent(second);
    QCOMPARE(f.performer.requestedDelays, QList<double>({0.25, 1.0 / 30.0, 0.25}));
    QCOMPARE(f.dispatcher.eventToRepeat(), second);
    QVERIFY(f.performer.fire());
    QCOMPARE(f.calls.last(), qMakePair(static_cast<const QVEvent *>(second.get()), true));

    f.repeat = false; // a click's hot key ends it
    f.dispatcher.sendEvent(makeEvent(3));
    QVERIFY(!f.performer.pending && !f.dispatcher.eventToRepeat());
    f.repeat = true; // a claimed key down is never repeated
    f.dispatcher.sendEvent(makeEvent(0, 0, QVEvent::KeyDown));
    QVERIFY(!f.performer.pending);
    f.dispatcher.sendEvent(makeEvent(4)); // a repetition that stops asking schedules nothing more
    f.repeat = false;
    QVERIFY(f.performer.fire());
    QVERIFY(!f.performer.pending);
}

QTEST_GUILESS_MAIN(TestEventDispatcher)
#include "tst_eventdispatcher.moc"
