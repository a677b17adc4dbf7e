// The hot key field on Qt's offscreen platform with the fake platform: the
// recording rule, its ways in and out, and that the keyboard is Corvane's exactly
// while a field records.
#include "QVFakeApplication.h"
#include "QVFakeDelayedPerformer.h"
#include "QVHotKeyClearButton.h"
#include "QVHotKeyRecordingRoute.h"
#include "QVHotKeyTextView.h"
#include "QVKeyNames.h"
#include "QVRecorderTestApplication.h"

#include <QAccessible>
#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRandomGenerator>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

using namespace QVModifierFlag;

namespace
{

constexpr quint16 keyJ = 44;
constexpr quint16 keyK = 45;
constexpr quint16 keyL = 46;
constexpr quint16 keyM = 58;
constexpr quint16 keyShiftL = 50;
constexpr quint64 controlOption = Control | Option;
constexpr quint32 carbonControlOption = QVCarbonModifier::Control | QVCarbonModifier::Option;
const QString noShortcut = QStringLiteral("No Shortcut");

// Two rows of the editor: field 0 for a Move (holding ^⌥J), field 1 for Center
// (holding ^⌥K), and a plain text field to click elsewhere. ^⌥L is held by another program.
struct Fixture {
    Fixture()
        : route(base.platform)
        , application(base.platform)
    {
        QVHotKeyRecordingRoute::setShared(&route);
        controls[0] = application.addControl(QVAction::Move);
        controls[1] = application.addControl(QVAction::MoveToCenter);
        QVRecorderTestApplication::giveHotKey(*controls[0], keyJ, controlOption, QStringLiteral("^⌥J"));
        QVRecorderTestApplication::giveHotKey(*controls[1], keyK, controlOption, QStringLiteral("^⌥K"));
        base.platform.refused.append({ keyL, carbonControlOption });
        base.platform.keyCharacters = { { keyJ, QStringLiteral("j") }, { keyK, QStringLiteral("k") } };

        window = std::make_unique<QWidget>();
        auto *layout = new QVBoxLayout(window.get());
        for (int row = 0; row < 2; ++row) {
            fields[row] = new QVHotKeyTextView(window.get());
            buttons[row] = new QVHotKeyClearButton(window.get());
            fields[row]->setDeleteButton(buttons[row]);
            fields[row]->setHotKeyDelegate(controls[row].get());
            fields[row]->setTimeOutPerformer(&timers[row]);
            fields[row]->setHotKey(controls[row]->hotKey());
            layout->addWidget(fields[row]);
            layout->addWidget(buttons[row]);
        }
        other = new QLineEdit(window.get());
        layout->addWidget(other);
        window->show();
        window->activateWindow();
    }
    ~Fixture()
    {
        window.reset();
        QVHotKeyRecordingRoute::setShared(nullptr);
    }

    // A key down from the platform, as it comes while the keyboard is taken.
    bool press(quint16 keyCode, quint64 flags, const QString &characters = {}, bool modifierKey = false)
    {
        auto event = std::make_shared<QVEvent>();
        event->type = QVEvent::KeyDown;
        event->keyCode = keyCode;
        event->modifierFlags = flags;
        event->charactersIgnoringModifiers = characters;
        event->isModifierKey = modifierKey;
        const bool routed = route.routeEvent(event);
        QCoreApplication::processEvents();
        return routed;
    }
    bool escape() { return press(QVKeyCode::Escape, 0); }
    void click(int row) { QTest::mouseClick(fields[row], Qt::LeftButton); }
    int registered() const { return int(base.platform.activeHotKeys.size()); }
    // The keyboard is Corvane's exactly while a field records with it; nothing leaks.
    QString brokenInvariant() const
    {
        int recording = 0;
        for (const QVHotKeyTextView *field : fields) {
            if (!field->isRecording())
                continue;
            ++recording;
            if (route.recordingField() != field)
                return QStringLiteral("a recording field unknown to the route");
            if (base.platform.keyboardTaken == field->readsApplicationKeyEvents())
                return QStringLiteral("keyboard taken %1 while reading Qt keys %2")
                    .arg(base.platform.keyboardTaken)
                    .arg(field->readsApplicationKeyEvents());
        }
        if (recording == 0 && (base.platform.keyboardTaken || route.recordingField()))
            return QStringLiteral("the keyboard is kept after recording");
        if (recording > 1)
            return QStringLiteral("two fields record");
        int held = 0;
        for (const QVCustomControlRef &control : controls)
            held += control->hotKey() && control->hotKey()->isRegistered();
        if (held != registered())
            return QStringLiteral("%1 registrations for %2 hot keys").arg(registered()).arg(held);
        return {};
    }

    QVFakeApplication base;
    QVHotKeyRecordingRoute route;
    QVRecorderTestApplication application;
    QVCustomControlRef controls[2];
    QVFakeDelayedPerformer timers[2];
    std::unique_ptr<QWidget> window;
    QVHotKeyTextView *fields[2] = {};
    QVHotKeyClearButton *buttons[2] = {};
    QLineEdit *other = nullptr;
};

// Answers every alert that comes up, with the policy's choice (true: the default button).
class AlertAnswerer final : public QObject
{
public:
    // whileUp runs once each alert is up, before the answer.
    explicit AlertAnswerer(std::function<bool()> policy, std::function<void()> whileUp = {})
        : m_policy(std::move(policy))
        , m_whileUp(std::move(whileUp))
    {
        m_timer.setInterval(5);
        connect(&m_timer, &QTimer::timeout, this, [this] { answer(); });
        m_timer.start();
    }

    QStringList titles;
    QStringList messages;
    QStringList defaultButtons;

private:
    void answer()
    {
        auto *alert = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!alert || !alert->isVisible())
            return;
        titles.append(alert->windowTitle());
        messages.append(alert->informativeText());
        defaultButtons.append(alert->defaultButton()->text());
        if (m_whileUp)
            m_whileUp();
        QTest::keyClick(alert, m_policy() ? Qt::Key_Return : Qt::Key_Escape);
    }

    std::function<bool()> m_policy;
    std::function<void()> m_whileUp;
    QTimer m_timer;
};

} // namespace

class TestHotKeyTextView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordingRule_data();
    void recordingRule();
    void delegateRefusalLeavesTheField();
    void deleteLetsGoEvenWhenRefused();
    void timeOut();
    void startsOnlyByClickOrKey();
    void everyWayOutGivesTheKeyboardBack_data();
    void everyWayOutGivesTheKeyboardBack();
    void withoutTheKeyboardQtKeysAndOwnHotKeysRecord();
    void idleFieldLeavesShortcutsAlone();
    void keyboardFollowsRecordingUnderRandomUse_data();
    void keyboardFollowsRecordingUnderRandomUse();
    void clearButtonPictures();
    void accessibleNamesAndValues();
};

void TestHotKeyTextView::recordingRule_data()
{
    QTest::addColumn<quint16>("keyCode");
    QTest::addColumn<quint64>("flags");
    QTest::addColumn<QString>("characters");
    QTest::addColumn<bool>("modifierKey");
    QTest::addColumn<QString>("alert"); // the alert's title, if one comes up
    QTest::addColumn<bool>("confirm"); // its answer: the default button, or Escape
    QTest::addColumn<QString>("text"); // the field's text afterwards
    QTest::addColumn<bool>("recording");
    QTest::addColumn<QString>("refusal");

    const QString kept = QStringLiteral("^⌥J");
    const quint16 escape = QVKeyCode::Escape;
    const quint64 none = 0;
    QTest::newRow("escape alone cancels") << escape << none << "" << false << "" << false << kept << false << "";
    QTest::newRow("escape with caps lock cancels")
        << escape << CapsLock << "" << false << "" << false << kept << false << "";
    QTest::newRow("shift escape is recorded")
        << escape << (Shift | LeftShift) << "" << false << "" << false << "⇧Escape" << false << "";
    QTest::newRow("letter alone, confirmed")
        << keyM << none << "m" << false << "Use “M”?" << true << "M" << false << "";
    QTest::newRow("letter alone, cancelled")
        << keyM << none << "m" << false << "Use “M”?" << false << kept << false << "";
    QTest::newRow("super letter asks") << keyM << (Command | LeftCommand) << "m" << false << "Use “⌘M”?" << true << "⌘M"
                                       << false << "";
    QTest::newRow("shift letter does not ask") << keyM << Shift << "m" << false << "" << false << "⇧M" << false << "";
    QTest::newRow("shift super letter does not ask")
        << keyM << (Shift | Command) << "m" << false << "" << false << "⇧⌘M" << false << "";
    QTest::newRow("control option arrow")
        << QVKeyCode::RightArrow << controlOption << "" << false << "" << false << "^⌥→" << false << "";
    QTest::newRow("control tab") << QVKeyCode::Tab << Control << "\t" << false << "" << false << "^⇥" << false << "";
    QTest::newRow("used by another control")
        << keyK << controlOption << "k" << false << "" << false << kept << true << "“^⌥K” is used by “Center”.";
    QTest::newRow("held by another program")
        << keyL << controlOption << "l" << false << "" << false << kept << true << "“^⌥L” is held by another program.";
    QTest::newRow("modifier key alone") << keyShiftL << Shift << "" << true << "" << false << kept << true << "";
}

void TestHotKeyTextView::recordingRule()
{
    QFETCH(quint16, keyCode);
    QFETCH(quint64, flags);
    QFETCH(QString, characters);
    QFETCH(bool, modifierKey);
    QFETCH(QString, alert);
    QFETCH(bool, confirm);
    QFETCH(QString, text);
    QFETCH(bool, recording);
    QFETCH(QString, refusal);

    Fixture f;
    QVHotKeyTextView *field = f.fields[0];
    QSignalSpy refusals(field, &QVHotKeyTextView::recordingRefused);
    f.click(0);
    QVERIFY(field->isRecording());
    QVERIFY(f.base.platform.keyboardTaken);
    QCOMPARE(field->selectedText(), QStringLiteral("^⌥J"));

    bool keyboardTakenWhileAsking = false;
    AlertAnswerer answerer([confirm] { return confirm; },
        [&] { keyboardTakenWhileAsking = f.base.platform.keyboardTaken || f.route.isKeyboardTaken(); });
    QVERIFY(f.press(keyCode, flags, characters, modifierKey));
    QCOMPARE(answerer.titles, alert.isEmpty() ? QStringList() : QStringList(alert));
    if (!alert.isEmpty()) {
        QVERIFY(answerer.messages.first().startsWith(QStringLiteral("Some applications might not respond properly")));
        QVERIFY2(!keyboardTakenWhileAsking, "the alert needs the keyboard");
    }
    QCOMPARE(field->text(), text);
    QCOMPARE(field->isRecording(), recording);
    QCOMPARE(f.base.platform.keyboardTaken, recording);
    QCOMPARE(f.base.platform.beeps, refusal.isEmpty() ? 0 : 1);
    QCOMPARE(refusals.size(), refusal.isEmpty() ? 0 : 1);
    if (!refusal.isEmpty())
        QCOMPARE(refusals.first().first().toString(), refusal);
    // Whatever happened, the control holds what the field shows, registered, and nothing more.
    QCOMPARE(f.controls[0]->hotKey(), field->hotKey());
    QVERIFY(field->hotKey()->isRegistered());
    QCOMPARE(f.registered(), 2);
    QCOMPARE(f.brokenInvariant(), QString());
}

void TestHotKeyTextView::delegateRefusalLeavesTheField()
{
    Fixture f;
    f.controls[0]->setAction(QVAction::None); // a control without action takes no hot key
    f.click(0);
    QVERIFY(f.press(keyM, controlOption, QStringLiteral("m")));
    QCOMPARE(f.fields[0]->text(), QStringLiteral("^⌥J"));
    QVERIFY(!f.fields[0]->isRecording());
    QCOMPARE(f.base.platform.beeps, 0);
    QCOMPARE(f.brokenInvariant(), QString());
}

void TestHotKeyTextView::deleteLetsGoEvenWhenRefused()
{
    Fixture f;
    f.fields[1]->setHotKeyDelegate(&f.base); // keeps whatever it has
    QVERIFY(f.buttons[1]->isEnabled());
    QTest::mouseClick(f.buttons[1], Qt::LeftButton);
    QVERIFY(!f.controls[1]->hotKey()->isRegistered());
    QCOMPARE(f.fields[1]->text(), QStringLiteral("^⌥K"));
    QCOMPARE(f.registered(), 1);

    // Taken: "No Shortcut", and the clear button is off until the next recording.
    QTest::mouseClick(f.buttons[0], Qt::LeftButton);
    QCOMPARE(f.fields[0]->hotKey(), QVHotKeyRef());
    QCOMPARE(f.controls[0]->hotKey(), QVHotKeyRef());
    QCOMPARE(f.fields[0]->text(), noShortcut);
    QVERIFY(!f.buttons[0]->isEnabled());
    QCOMPARE(f.registered(), 0);
    f.click(0);
    QVERIFY(f.buttons[0]->isEnabled());
    QCOMPARE(f.fields[0]->text(), QStringLiteral(" "));
    // The clear button of a recording field without hot key ends the recording.
    QTest::mouseClick(f.buttons[0], Qt::LeftButton);
    QVERIFY(!f.fields[0]->isRecording());
    QVERIFY(!f.buttons[0]->isEnabled());
    QCOMPARE(f.brokenInvariant(), QString());
}

void TestHotKeyTextView::timeOut()
{
    Fixture f;
    f.click(0);
    QCOMPARE(f.timers[0].requestedDelays, QList<double>({ 30.0 }));
    QVERIFY(f.timers[0].fire());
    QVERIFY(!f.fields[0]->isRecording());
    QVERIFY(!f.base.platform.keyboardTaken);
    QCOMPARE(f.fields[0]->text(), QStringLiteral("^⌥J"));
    // Ending otherwise cancels the time-out; a new recording starts it afresh.
    f.click(0);
    f.escape();
    QVERIFY(!f.timers[0].pending);
    f.click(0);
    QCOMPARE(f.timers[0].requestedDelays.size(), 3);
    QVERIFY(f.timers[0].pending);
}

void TestHotKeyTextView::startsOnlyByClickOrKey()
{
    Fixture f;
    QVHotKeyTextView *field = f.fields[0];
    QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
    field->setFocus(Qt::TabFocusReason);
    QVERIFY(field->hasFocus());
    QVERIFY(!field->isRecording());
    QVERIFY(!field->hasSelectedText());
    QTest::mouseClick(field, Qt::RightButton);
    QVERIFY(!field->isRecording());

    for (const Qt::Key key : { Qt::Key_Space, Qt::Key_Return }) {
        QTest::keyPress(field, key);
        QVERIFY2(!field->isRecording(), "recording starts when the key is let go");
        QTest::keyRelease(field, key);
        QVERIFY(field->isRecording());
        QVERIFY(f.base.platform.keyboardTaken);
        f.escape();
        QVERIFY(!field->isRecording());
        QVERIFY2(field->hasFocus(), "a keyboard user keeps the place");
    }
    // Another key on the idle field goes on to the row around it.
    QTest::keyClick(field, Qt::Key_A);
    QVERIFY(!field->isRecording());

    f.click(0);
    f.click(1);
    QVERIFY(!field->isRecording());
    QVERIFY(f.fields[1]->isRecording());
    QCOMPARE(f.route.recordingField(), f.fields[1]);
    QCOMPARE(f.brokenInvariant(), QString());
}

// The ways out that the recording rule and the random use do not take.
void TestHotKeyTextView::everyWayOutGivesTheKeyboardBack_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : { "click outside the window", "window hidden", "field destroyed", "route destroyed" })
        QTest::newRow(way) << QString::fromLatin1(way);
}

void TestHotKeyTextView::everyWayOutGivesTheKeyboardBack()
{
    QFETCH(QString, way);
    Fixture f;
    QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
    std::unique_ptr<QVHotKeyRecordingRoute> second;
    if (way == QLatin1String("route destroyed")) {
        second = std::make_unique<QVHotKeyRecordingRoute>(f.base.platform);
        QVHotKeyRecordingRoute::setShared(second.get());
    }
    f.click(0);
    QVERIFY(f.base.platform.keyboardTaken);
    if (way == QLatin1String("click outside the window")) {
        // The platform reports a click anywhere while the keyboard is taken.
        QCursor::setPos(f.window->geometry().bottomRight() + QPoint(50, 50));
        auto click = std::make_shared<QVEvent>();
        click->type = QVEvent::LeftMouseDown;
        QVERIFY(f.route.routeEvent(click));
    } else if (way == QLatin1String("window hidden")) {
        f.window->hide();
    } else if (way == QLatin1String("field destroyed")) {
        delete std::exchange(f.fields[0], f.fields[1]);
    } else {
        second.reset();
        QVHotKeyRecordingRoute::setShared(&f.route);
    }
    QVERIFY(!f.fields[0]->isRecording());
    QCOMPARE(f.brokenInvariant(), QString());
}

void TestHotKeyTextView::withoutTheKeyboardQtKeysAndOwnHotKeysRecord()
{
    Fixture f;
    QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
    f.base.platform.keyboardAvailable = false;
    QVHotKeyTextView *field = f.fields[0];
    f.click(0);
    QVERIFY(field->isRecording());
    QVERIFY(field->readsApplicationKeyEvents());

    // No shortcut acts; Tab is recorded and the focus stays (native code 23, X state Control).
    QShortcut shortcut(QKeySequence(QStringLiteral("Ctrl+Tab")), f.window.get());
    QSignalSpy activated(&shortcut, &QShortcut::activated);
    QKeyEvent override(QEvent::ShortcutOverride, Qt::Key_Tab, Qt::ControlModifier, 23, 0, 0x4);
    override.ignore();
    QApplication::sendEvent(field, &override);
    QVERIFY(override.isAccepted());
    QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::ControlModifier, 23, 0, 0x4, QStringLiteral("\t"));
    QApplication::sendEvent(field, &tab);
    QCOMPARE(field->text(), QStringLiteral("^⇥"));
    QCOMPARE(field->hotKey()->keyCode(), QVKeyCode::Tab);
    QVERIFY(field->hasFocus());
    QCOMPARE(activated.size(), 0);

    // A press of Corvane's own hot key (once per registration of a shared grab) is a
    // candidate: it is refused as a conflict and does not act.
    f.click(0);
    QSignalSpy refusals(field, &QVHotKeyTextView::recordingRefused);
    auto hotKeyPress = [&](int subtype) {
        auto event = std::make_shared<QVEvent>();
        event->type = QVEvent::SystemDefined;
        event->subtype = subtype;
        event->data1 = f.controls[1]->hotKey()->hotKeyReference();
        event->keyCode = keyK;
        event->modifierFlags = controlOption | LeftControl | LeftOption;
        const bool routed = f.route.routeEvent(event);
        QCoreApplication::processEvents();
        return routed;
    };
    QVERIFY(hotKeyPress(QVEvent::HotKeyPressed));
    QVERIFY(hotKeyPress(QVEvent::HotKeyPressed));
    QVERIFY2(!hotKeyPress(QVEvent::HotKeyReleased), "the release still ends any repetition");
    QVERIFY(hotKeyPress(QVEvent::HotKeyPressed));
    QCOMPARE(refusals.size(), 2);
    QCOMPARE(refusals.first().first().toString(), QStringLiteral("“^⌥K” is used by “Center”."));
    QVERIFY(field->isRecording());

    // Without the keyboard the window's own deactivation is a way out.
    QWidget elsewhere;
    elsewhere.show();
    elsewhere.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&elsewhere));
    QVERIFY(!field->isRecording());
    QCOMPARE(f.brokenInvariant(), QString());
}

void TestHotKeyTextView::idleFieldLeavesShortcutsAlone()
{
    Fixture f;
    QVHotKeyTextView *field = f.fields[0];
    field->setFocus(Qt::TabFocusReason);
    QKeyEvent copy(QEvent::ShortcutOverride, Qt::Key_C, Qt::ControlModifier);
    copy.ignore();
    QApplication::sendEvent(field, &copy);
    QVERIFY(!copy.isAccepted());
    // While the keyboard is taken, the window losing Qt's activation is the grab's doing.
    f.click(0);
    QWidget elsewhere;
    elsewhere.show();
    elsewhere.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&elsewhere));
    QVERIFY(field->isRecording());
    QVERIFY(f.base.platform.keyboardTaken);
}

void TestHotKeyTextView::keyboardFollowsRecordingUnderRandomUse_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 12; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void TestHotKeyTextView::keyboardFollowsRecordingUnderRandomUse()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    Fixture f;
    QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
    AlertAnswerer answerer([&random] { return random.bounded(2) == 0; });
    const quint16 letters[] = { keyJ, keyK, keyL, keyM };
    const quint64 modifiers[] = { 0, Shift, controlOption, Command, controlOption | Shift };
    QStringList steps;
    for (int step = 0; step < 80; ++step) {
        const int row = int(random.bounded(2));
        switch (random.bounded(9)) {
        case 0: steps << QStringLiteral("click %1").arg(row), f.click(row); break;
        case 1: steps << QStringLiteral("click elsewhere"), QTest::mouseClick(f.other, Qt::LeftButton); break;
        case 2: steps << QStringLiteral("escape"), f.escape(); break;
        case 3: {
            const quint16 key = letters[random.bounded(4)];
            const quint64 flags = modifiers[random.bounded(5)];
            steps << QStringLiteral("key %1 flags %2").arg(key).arg(flags, 0, 16);
            f.press(key, flags, QStringLiteral("x"));
            break;
        }
        case 4: steps << QStringLiteral("modifier alone"), f.press(keyShiftL, Shift, {}, true); break;
        case 5: steps << QStringLiteral("time-out %1").arg(row), f.timers[row].fire(); break;
        case 6: steps << QStringLiteral("clear %1").arg(row), QTest::mouseClick(f.buttons[row], Qt::LeftButton); break;
        case 7:
            steps << QStringLiteral("space on %1").arg(row);
            f.fields[row]->setFocus(Qt::TabFocusReason);
            QTest::keyClick(f.fields[row], Qt::Key_Space);
            break;
        case 8:
            f.base.platform.keyboardAvailable = !f.base.platform.keyboardAvailable;
            steps << QStringLiteral("keyboard available %1").arg(f.base.platform.keyboardAvailable);
            break;
        }
        const QString broken = f.brokenInvariant();
        QVERIFY2(broken.isEmpty(), qPrintable(broken + QStringLiteral(" after: ") + steps.join(QStringLiteral(", "))));
    }
}

void TestHotKeyTextView::clearButtonPictures()
{
    QWidget background;
    background.setAutoFillBackground(true);
    background.setPalette(QPalette(Qt::white));
    QVHotKeyClearButton button(&background);
    button.resize(button.sizeHint());
    QCOMPARE(button.sizeHint(), QSize(14, 14));
    const auto picture = [&button] { return button.grab().toImage(); };
    const QPoint middle(7, 3); // on the disc, beside the cross
    const QPoint corner(0, 0); // outside the disc
    const QImage disabled = picture();
    button.setEnabled(true);
    const QImage enabled = picture();
    button.setDown(true);
    const QImage pressed = picture();
    QVERIFY(qGray(disabled.pixel(middle)) > qGray(enabled.pixel(middle)));
    // Pressed: darker by a tenth of black, and only where the picture has ink.
    QVERIFY(qGray(pressed.pixel(middle)) < qGray(enabled.pixel(middle)));
    QVERIFY(qAbs(qGray(pressed.pixel(middle)) - int(qGray(enabled.pixel(middle)) * 0.9)) <= 2);
    QCOMPARE(pressed.pixel(corner), enabled.pixel(corner));
    QCOMPARE(pressed.pixel(corner), disabled.pixel(corner));
}

void TestHotKeyTextView::accessibleNamesAndValues()
{
    Fixture f;
    QAccessibleInterface *field = QAccessible::queryAccessibleInterface(f.fields[0]);
    QAccessibleInterface *button = QAccessible::queryAccessibleInterface(f.buttons[1]);
    QCOMPARE(field->text(QAccessible::Name), QStringLiteral("Hot key"));
    QCOMPARE(field->text(QAccessible::Value), QStringLiteral("^⌥J"));
    QCOMPARE(button->text(QAccessible::Name), QStringLiteral("Clear hot key"));
    QCOMPARE(button->role(), QAccessible::Button);
    QTest::mouseClick(f.buttons[0], Qt::LeftButton);
    QCOMPARE(field->text(QAccessible::Value), noShortcut);
    QVERIFY(QAccessible::queryAccessibleInterface(f.buttons[0])->state().disabled);
}

QTEST_MAIN(TestHotKeyTextView)
#include "tst_hotkeytextview.moc"
