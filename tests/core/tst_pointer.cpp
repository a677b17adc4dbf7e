#include "QVActionEngine.h"
#include "QVFakeApplication.h"
#include "QVFakeDelayedPerformer.h"
#include "QVModifierFlagBits.h"
#include "QVScreenGeometry.h"

#include <QTest>

namespace
{

// A primary display and a shorter one to its right, offset upwards.
const QVRect primary { 0, 0, 1920, 1080 };
const QVRect shorter { 1920, 140, 1280, 800 };

int indexOf(const QVDisplay *display, const QVDisplayList &displays)
{
    return display ? static_cast<int>(display - displays.constData()) : -1;
}

QJsonObject control(qint64 action, std::initializer_list<QPair<const char *, QJsonValue>> fields = {})
{
    QJsonObject dictionary { { QStringLiteral("Action"), action } };
    for (const auto &[key, value] : fields)
        dictionary.insert(QString::fromLatin1(key), value);
    return dictionary;
}

// The engine over the fake platform showing primary and shorter.
struct Engine {
    Engine() { app.platform.displayList = QVFakeDisplays({ primary, shorter }); }
    QVCustomControlRef add(const QJsonObject &dictionary)
    {
        controls.append(QVCustomControlRepresentation::controlWithDictionaryRepresentation(dictionary, &app));
        return controls.last();
    }

    QVFakeApplication app;
    QList<QVCustomControlRef> controls;
    QVFakeDelayedPerformer clickTimer;
    QVActionEngine engine { app.platform, app.platform, [this] { return controls; }, clickTimer };
};

} // namespace

class TestPointer final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void displayUnderPoint_data();
    void displayUnderPoint();
    void displayInDirection_data();
    void displayInDirection();
    void engineMoves_data();
    void engineMoves();
    void guessedLocationIsPutAnyway_data();
    void guessedLocationIsPutAnyway();
    void acceleration();
    void clickLetsGoOnATimerOneButtonAtATime();
    void hotKeyEventMatchingNoControl();
};

void TestPointer::displayUnderPoint_data()
{
    QTest::addColumn<QVPoint>("point");
    QTest::addColumn<int>("expected");

    QTest::newRow("top row belongs to the display") << QVPoint { 0, 1080 } << 0;
    QTest::newRow("bottom edge does not") << QVPoint { 100, 0 } << -1;
    QTest::newRow("last column") << QVPoint { 1919.5, 1 } << 0;
    QTest::newRow("right edge: the neighbour starting there") << QVPoint { 1920, 500 } << 1;
    QTest::newRow("beside the shorter display") << QVPoint { 1920, 50 } << -1;
    QTest::newRow("right edge of the layout") << QVPoint { 3200, 500 } << -1;
}

void TestPointer::displayUnderPoint()
{
    QFETCH(QVPoint, point);
    QFETCH(int, expected);
    const QVDisplayList displays = QVFakeDisplays({ primary, shorter });
    QCOMPARE(indexOf(screenAtPosition(QVPosition::None, point, displays), displays), expected);
}

void TestPointer::displayInDirection_data()
{
    QTest::addColumn<QList<QVRect>>("frames");
    QTest::addColumn<int>("from");
    QTest::addColumn<qint64>("position");
    QTest::addColumn<bool>("loop");
    QTest::addColumn<int>("expected");

    using namespace QVPosition;
    const QVRect right { 1920, 0, 1920, 1080 };
    const QVRect above { 0, 1080, 1920, 1080 };
    QTest::newRow("one display, itself") << QList<QVRect> { primary } << 0 << None << false << 0;
    QTest::newRow("one display, loop") << QList<QVRect> { primary } << 0 << Right << true << -1;
    QTest::newRow("right") << QList<QVRect> { primary, right } << 0 << Right << false << 1;
    QTest::newRow("rightmost, no loop") << QList<QVRect> { primary, right } << 1 << Right << false << -1;
    QTest::newRow("rightmost, loop") << QList<QVRect> { primary, right } << 1 << Right << true << 0;
    QTest::newRow("shorter, still beside") << QList<QVRect> { primary, shorter } << 0 << Right << false << 1;
    QTest::newRow("corners touch") << QList<QVRect> { primary, { 1920, 1080, 1280, 800 } } << 0 << Right << true << -1;
    QTest::newRow("diagonal code") << QList<QVRect> { primary, right } << 0 << TopRight << false << -1;
    QTest::newRow("above") << QList<QVRect> { primary, above } << 0 << Top << false << 1;
    QTest::newRow("above is not beside") << QList<QVRect> { primary, above } << 0 << Right << true << -1;
    QTest::newRow("0.1 beyond is not") << QList<QVRect> { primary, { 0.1, 0, 1920, 1080 } } << 0 << Right << false
                                       << -1;
    QTest::newRow("0.2 beyond is") << QList<QVRect> { primary, { 0.2, 0, 1920, 1080 } } << 0 << Right << false << 1;
    QTest::newRow("nearest, not first listed")
        << QList<QVRect> { primary, { 3840, 0, 1920, 1080 }, right } << 0 << Right << false << 2;
    QTest::newRow("equally near: first listed")
        << QList<QVRect> { primary, right, { 1920, 500, 1920, 1080 } } << 0 << Right << false << 1;
    QTest::newRow("loop to the farthest")
        << QList<QVRect> { primary, { -1920, 0, 1920, 1080 }, { -3840, 0, 1920, 1080 } } << 0 << Right << true << 2;
}

void TestPointer::displayInDirection()
{
    QFETCH(QList<QVRect>, frames);
    QFETCH(int, from);
    QFETCH(qint64, position);
    QFETCH(bool, loop);
    QFETCH(int, expected);

    const QVDisplayList displays = QVFakeDisplays(frames);
    QCOMPARE(indexOf(screenAtRelativePosition(&displays[from], position, loop, displays), displays), expected);
    if (!loop)
        QCOMPARE(indexOf(screenAtPosition(position, frames[from].center(), displays), displays), expected);
}

void TestPointer::engineMoves_data()
{
    QTest::addColumn<QJsonObject>("control");
    QTest::addColumn<QVPoint>("start"); // window coordinates
    QTest::addColumn<QVPoint>("expected"); // the start: no move at all

    const auto move = [](qint64 direction, qint64 delta) {
        return control(QVAction::Move, { { "Move Direction", direction }, { "Move Delta", delta } });
    };
    using namespace QVPosition;
    const QVPoint start { 100, 100 };
    const QVPoint between { 1920, 50 }; // on no display
    QTest::newRow("up right: 7 each") << move(TopRight, 10) << start << QVPoint { 107, 107 };
    QTest::newRow("delta 0 still moves") << move(Left, 0) << start << QVPoint { 99, 100 };
    QTest::newRow("delta 0 diagonally") << move(BottomRight, 0) << start << QVPoint { 101, 99 };
    QTest::newRow("confined, from between displays")
        << control(QVAction::Move, { { "Move Delta", 10 }, { "Confine to Display", true } }) << QVPoint { 1925, 50 }
        << QVPoint { 1935, 50 };
    QTest::newRow("centre from between displays") << control(QVAction::MoveToCenter) << between << QVPoint { 0, 0 };
    // The right edge is where the neighbour's first column begins, the bottom edge
    // the row below the display: targets that stay on the display stop before them.
    const auto confinedRight = control(QVAction::Move, { { "Move Delta", 10 }, { "Confine to Display", true } });
    QTest::newRow("confined move stops on the last column beside a neighbour")
        << confinedRight << QVPoint { 1915, 500 } << QVPoint { 1919, 500 };
    QTest::newRow("confined move from the last column stays")
        << confinedRight << QVPoint { 1919, 500 } << QVPoint { 1919, 500 };
    QTest::newRow("a move leaving every display stops on its last column")
        << move(Right, 5000) << QVPoint { 100, 50 } << QVPoint { 1919, 50 };
    QTest::newRow("right edge beside a neighbour is the last column")
        << control(QVAction::MoveToEdgeOrCorner, { { "Move to Edge/Corner Direction", Right } }) << QVPoint { 100, 500 }
        << QVPoint { 1919, 500 };
    QTest::newRow("bottom right corner is the last pixel")
        << control(QVAction::MoveToEdgeOrCorner, { { "Move to Edge/Corner Direction", BottomRight } })
        << QVPoint { 100, 500 } << QVPoint { 1919, 1 };
    QTest::newRow("unconfined move crosses onto the neighbour")
        << move(Right, 10) << QVPoint { 1915, 500 } << QVPoint { 1925, 500 };
    QTest::newRow("edge from between displays")
        << control(QVAction::MoveToEdgeOrCorner, { { "Move to Edge/Corner Direction", Right } }) << between << between;
    QTest::newRow("other display from between") << control(QVAction::MoveToOtherDisplay,
        { { "Move to Other Display Direction", Right }, { "Loop Through Displays", true } })
                                                << between << between;
}

void TestPointer::engineMoves()
{
    QFETCH(QJsonObject, control);
    QFETCH(QVPoint, start);
    QFETCH(QVPoint, expected);

    Engine e;
    const auto global = [](const QVPoint &point) { return QVPoint { point.x, primary.height - point.y }; };
    e.app.platform.pointer = start;
    QVERIFY(e.engine.performActionTriggeredByControl(e.add(control).get(), nullptr, false, nullptr));
    QVERIFY(e.app.platform.postedMoves == (start == expected ? QList<QVPoint>() : QList<QVPoint> { global(expected) }));
}

void TestPointer::guessedLocationIsPutAnyway_data()
{
    QTest::addColumn<QJsonObject>("control");
    QTest::addColumn<bool>("approximate");
    QTest::addColumn<int>("moves");
    const QJsonObject centre = control(QVAction::MoveToCenter);
    QTest::newRow("known to be there already") << centre << false << 0;
    QTest::newRow("guessed to be there") << centre << true << 1;
    // The overlay only opens: the guess is no place to put the pointer.
    QTest::newRow("screen section, guessed") << control(QVAction::MoveToScreenSection) << true << 0;
}

// Where the window system tells no one where the pointer is, the guess may be
// wrong: a target equal to it is no reason to stay.
void TestPointer::guessedLocationIsPutAnyway()
{
    QFETCH(QJsonObject, control);
    QFETCH(bool, approximate);
    QFETCH(int, moves);
    Engine e;
    e.app.platform.pointer = primary.center();
    e.app.platform.pointerApproximate = approximate;
    QVERIFY(e.engine.performActionTriggeredByControl(e.add(control).get(), nullptr, false, nullptr));
    QCOMPARE(e.app.platform.postedMoves.size(), moves);
}

void TestPointer::acceleration()
{
    Engine e;
    const QVCustomControlRef move = e.add(control(QVAction::Move, { { "Move Delta", 10 }, { "Accelerate", true } }));
    e.app.platform.pointer = { 100, 500 };
    const auto step = [&](bool isRepetition) {
        e.engine.performActionTriggeredByControl(move.get(), nullptr, isRepetition, nullptr);
        return e.app.platform.postedMoves.last().x - 100;
    };
    QList<double> steps { step(false) };
    for (int repetition = 1; repetition <= 200; ++repetition)
        steps.append(step(true));
    QCOMPARE(steps.mid(0, 4), QList<double>({ 10, 10, 20, 30 }));
    QCOMPARE(steps[149], 1490.0);
    QCOMPARE(steps[150], 1500.0); // the cap
    QCOMPARE(steps[200], 1500.0);
    QCOMPARE(step(false), 10.0); // a new press starts over
}

void TestPointer::clickLetsGoOnATimerOneButtonAtATime()
{
    Engine e;
    const QVCustomControlRef click = e.add(control(QVAction::Click));
    const QVCustomControlRef rightClick = e.add(control(QVAction::RightClick));
    using Button = QPair<bool, bool>; // (down, right)
    QVERIFY(e.engine.performActionTriggeredByControl(click.get(), nullptr, false, nullptr));
    QCOMPARE(e.app.platform.buttons, QList<Button>({ { true, false } })); // returns with the button held
    QCOMPARE(e.clickTimer.requestedDelays, QList<double>({ 0.05 }));
    // Another click before the first let go: the first lets go before it.
    QVERIFY(e.engine.performActionTriggeredByControl(rightClick.get(), nullptr, false, nullptr));
    QVERIFY(e.clickTimer.fire());
    QCOMPARE(
        e.app.platform.buttons, QList<Button>({ { true, false }, { false, false }, { true, true }, { false, true } }));
    QVERIFY(!e.clickTimer.fire());
    e.engine.finishPendingClick(); // at quit, with nothing held: nothing more
    QCOMPARE(e.app.platform.buttons.size(), 4);
    QCOMPARE(e.app.platform.pointerReads, 0); // a click needs no pointer position
}

void TestPointer::hotKeyEventMatchingNoControl()
{
    using namespace QVModifierFlag;
    Engine e;
    e.add(control(QVAction::Click)); // no hot key: never matches
    const QVCustomControlRef centre = e.add(control(QVAction::MoveToCenter));
    const QString id = centre->uniqueIdentifier();
    QVERIFY(centre->shouldSetHotKey(QVHotKey::hotKeyWithIdentifer(id, QStringLiteral("^x"), 54, Control), id));
    e.app.platform.pointer = { 100, 100 };
    QVEvent event;
    event.type = QVEvent::SystemDefined;
    event.subtype = QVEvent::HotKeyPressed;
    event.data1 = centre->hotKey()->hotKeyReference();
    event.modifierFlags = Control;
    bool shouldRepeat = false;
    QVERIFY(e.engine.performActionTriggeredByControl(nullptr, &event, false, &shouldRepeat));
    QCOMPARE(e.app.platform.postedMoves.size(), 1);

    // Events that no control claims move nothing, but still count as presses.
    event.subtype = QVEvent::HotKeyReleased;
    QVERIFY(!e.engine.performActionTriggeredByControl(nullptr, &event, true, &shouldRepeat));
    QCOMPARE(e.engine.repetitionCounter(), 1u);
    event.modifierFlags = Option;
    event.subtype = QVEvent::HotKeyPressed;
    QVERIFY(!e.engine.performActionTriggeredByControl(nullptr, &event, false, &shouldRepeat));
    QCOMPARE(e.engine.repetitionCounter(), 0u);
    QVERIFY(!e.engine.performActionTriggeredByControl(nullptr, nullptr, false, &shouldRepeat));
    QVERIFY(e.app.platform.postedMoves.size() == 1 && e.app.platform.buttons.isEmpty() && !shouldRepeat);
}

QTEST_GUILESS_MAIN(TestPointer)
#include "tst_pointer.moc"
