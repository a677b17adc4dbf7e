// The hot key field with the fake platform: what real keys on a real server
// (tst_x11_hotkeyrecorder) do not reach, and that the keyboard is Corvane's exactly
// while a field records.
#include "QVFakeApplication.h"
#include "QVFakeDelayedPerformer.h"
#include "QVHotKeyClearButton.h"
#include "QVHotKeyRecordingRoute.h"
#include "QVHotKeyTextView.h"
#include "QVKeyNames.h"
#include "QVRecorderTestApplication.h"

#include <QApplication>
#include <QMessageBox>
#include <QRandomGenerator>
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

// Two rows of the editor: field 0 for a Move (holding ^⌥J), field 1 for Center
// (holding ^⌥K). ^⌥L is held by another program.
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
        base.platform.refused.append({ keyL, QVCarbonModifier::Control | QVCarbonModifier::Option });
        base.platform.keyCharacters = { { keyJ, QStringLiteral("j") }, { keyK, QStringLiteral("k") },
            { keyL, QStringLiteral("l") }, { keyM, QStringLiteral("m") } };

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
        window->show();
        window->activateWindow();
    }
    ~Fixture()
    {
        window.reset();
        QVHotKeyRecordingRoute::setShared(nullptr);
    }

    // An event from the platform, as it comes while the keyboard is taken.
    bool send(int type, quint16 keyCode, quint64 flags, bool modifierKey = false, int subtype = 0, quint64 data1 = 0)
    {
        auto event = std::make_shared<QVEvent>();
        event->type = type;
        event->subtype = subtype;
        event->data1 = data1;
        event->keyCode = keyCode;
        event->modifierFlags = flags;
        event->charactersIgnoringModifiers = base.platform.keyCharacters.value(keyCode);
        event->isModifierKey = modifierKey;
        const bool routed = route.routeEvent(event);
        QCoreApplication::processEvents();
        return routed;
    }
    bool press(quint16 keyCode, quint64 flags, bool modifierKey = false)
    {
        return send(QVEvent::KeyDown, keyCode, flags, modifierKey);
    }
    bool escape() { return press(QVKeyCode::Escape, 0); }
    void click(int row) { QTest::mouseClick(fields[row], Qt::LeftButton); }
    int registered() const { return int(base.platform.activeHotKeys.size()); }
    // The keyboard is Corvane's exactly while a field records with it; nothing leaks.
    QString brokenInvariant() const
    {
        const QVHotKeyTextView *recorder = nullptr;
        for (const QVHotKeyTextView *field : fields)
            if (field->isRecording()) {
                if (recorder)
                    return QStringLiteral("two fields record");
                recorder = field;
            }
        if (route.recordingField() != recorder)
            return QStringLiteral("the route knows another recording field");
        if (base.platform.keyboardTaken != (recorder && !recorder->readsApplicationKeyEvents()))
            return QStringLiteral("the keyboard is not taken exactly while a field records with it");
        int held = 0;
        for (const QVCustomControlRef &control : controls)
            held += control->hotKey() && control->hotKey()->isRegistered();
        if (held != registered())
            return QStringLiteral("%1 registrations for %2 hot keys").arg(registered()).arg(held);
        return {};
    }
    // Answers every alert that comes up with the policy's choice (true: the default button);
    // whileUp runs once each alert is up, before the answer.
    void answerAlerts(
        const std::function<bool()> &policy, const std::function<void()> &whileUp = [] {})
    {
        alertTimer.callOnTimeout(window.get(), [this, policy, whileUp] {
            auto *alert = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!alert || !alert->isVisible())
                return;
            alertTitles.append(alert->windowTitle());
            whileUp();
            QTest::keyClick(alert, policy() ? Qt::Key_Return : Qt::Key_Escape);
        });
        alertTimer.start(5);
    }

    QVFakeApplication base;
    QVHotKeyRecordingRoute route;
    QVRecorderTestApplication application;
    QVCustomControlRef controls[2];
    QVFakeDelayedPerformer timers[2];
    std::unique_ptr<QWidget> window;
    QVHotKeyTextView *fields[2] = {};
    QVHotKeyClearButton *buttons[2] = {};
    QTimer alertTimer;
    QStringList alertTitles;
};

} // namespace

class TestHotKeyTextView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Plain Escape, Shift, Tab, the alert and both kinds of conflict are pressed with real
    // keys on the real server; these are the rows only the fake reaches.
    void recordingRule_data()
    {
        QTest::addColumn<quint16>("keyCode");
        QTest::addColumn<quint64>("flags");
        QTest::addColumn<bool>("withAction"); // a control without action takes no hot key
        QTest::addColumn<QString>("alert"); // the alert's title, if one comes up; it is confirmed
        QTest::addColumn<QString>("text"); // the field's text afterwards
        const QString kept = QStringLiteral("^⌥J");
        QTest::newRow("escape with caps lock cancels")
            << quint16(QVKeyCode::Escape) << quint64(CapsLock) << true << "" << kept;
        QTest::newRow("super letter asks")
            << keyM << (Command | LeftCommand) << true << "Use “⌘M”?" << QStringLiteral("⌘M");
        QTest::newRow("shift super letter does not ask")
            << keyM << (Shift | Command) << true << "" << QStringLiteral("⇧⌘M");
        QTest::newRow("the delegate refuses") << keyM << controlOption << false << "" << kept;
    }

    void recordingRule()
    {
        QFETCH(quint16, keyCode);
        QFETCH(quint64, flags);
        QFETCH(bool, withAction);
        QFETCH(QString, alert);
        QFETCH(QString, text);
        Fixture f;
        if (!withAction)
            f.controls[0]->setAction(QVAction::None);
        QVHotKeyTextView *field = f.fields[0];
        f.click(0);
        QVERIFY(f.base.platform.keyboardTaken);
        QCOMPARE(field->selectedText(), QStringLiteral("^⌥J"));

        bool keyboardTakenWhileAsking = false;
        f.answerAlerts([] { return true; },
            [&] { keyboardTakenWhileAsking = f.base.platform.keyboardTaken || f.route.isKeyboardTaken(); });
        QVERIFY(f.press(keyCode, flags));
        QCOMPARE(f.alertTitles, alert.isEmpty() ? QStringList() : QStringList(alert));
        QVERIFY2(!keyboardTakenWhileAsking, "the alert needs the keyboard");
        QCOMPARE(field->text(), text);
        QVERIFY(!field->isRecording());
        QCOMPARE(f.base.platform.beeps, 0);
        // Whatever happened, the control holds what the field shows, registered, and nothing more.
        QCOMPARE(f.controls[0]->hotKey(), field->hotKey());
        QCOMPARE(f.registered(), 2);
        QCOMPARE(f.brokenInvariant(), QString());
    }

    void deleteLetsGoEvenWhenRefused()
    {
        Fixture f;
        f.fields[1]->setHotKeyDelegate(&f.base); // keeps whatever it has
        QTest::mouseClick(f.buttons[1], Qt::LeftButton);
        QVERIFY(!f.controls[1]->hotKey()->isRegistered());
        QCOMPARE(f.fields[1]->text(), QStringLiteral("^⌥K"));
        QCOMPARE(f.registered(), 1);

        // Taken: "No Shortcut", and the clear button is off until the next recording.
        QTest::mouseClick(f.buttons[0], Qt::LeftButton);
        QCOMPARE(f.controls[0]->hotKey(), QVHotKeyRef());
        QCOMPARE(f.fields[0]->text(), QStringLiteral("No Shortcut"));
        QVERIFY(!f.buttons[0]->isEnabled());
        QCOMPARE(f.registered(), 0);
        f.click(0);
        QVERIFY(f.buttons[0]->isEnabled());
        // The clear button of a recording field without hot key ends the recording.
        QTest::mouseClick(f.buttons[0], Qt::LeftButton);
        QVERIFY(!f.fields[0]->isRecording());
        QVERIFY(!f.buttons[0]->isEnabled());
        QCOMPARE(f.brokenInvariant(), QString());
    }

    void startsOnlyByClickOrKey()
    {
        Fixture f;
        QVHotKeyTextView *field = f.fields[0];
        QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
        field->setFocus(Qt::TabFocusReason);
        QVERIFY(!field->hasSelectedText());
        QTest::mouseClick(field, Qt::RightButton);
        QTest::keyClick(field, Qt::Key_A);
        QVERIFY(!field->isRecording());
        for (const Qt::Key key : { Qt::Key_Space, Qt::Key_Return }) {
            QTest::keyPress(field, key);
            QVERIFY2(!field->isRecording(), "recording starts when the key is let go");
            QTest::keyRelease(field, key);
            QVERIFY(f.base.platform.keyboardTaken);
            QVERIFY2(f.timers[0].pending, "each recording starts the time-out afresh");
            f.escape();
            QVERIFY(!field->isRecording());
            QVERIFY2(field->hasFocus(), "a keyboard user keeps the place");
        }
    }

    // Ways out that the recording rule, the real server and the random use do not take; each
    // cancels the time-out. With the keyboard taken, losing Qt's activation is the grab's doing.
    void waysOut_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<bool>("keyboardAvailable");
        QTest::addColumn<bool>("ends");
        QTest::newRow("time-out") << "time-out" << true << true;
        QTest::newRow("window hidden") << "hide" << true << true;
        QTest::newRow("field destroyed") << "destroy field" << true << true;
        QTest::newRow("route destroyed") << "destroy route" << true << true;
        QTest::newRow("another window, reading Qt's keys") << "activate another" << false << true;
        QTest::newRow("another window, keyboard taken") << "activate another" << true << false;
    }

    void waysOut()
    {
        QFETCH(QString, way);
        QFETCH(bool, keyboardAvailable);
        QFETCH(bool, ends);
        Fixture f;
        QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
        f.base.platform.keyboardAvailable = keyboardAvailable;
        std::optional<QVHotKeyRecordingRoute> second;
        if (way == QLatin1String("destroy route"))
            QVHotKeyRecordingRoute::setShared(&second.emplace(f.base.platform));
        f.click(0);
        QCOMPARE(f.timers[0].requestedDelays, QList<double>({ 30.0 }));
        QWidget elsewhere;
        if (way == QLatin1String("time-out")) {
            QVERIFY(f.timers[0].fire());
        } else if (way == QLatin1String("hide")) {
            f.window->hide();
        } else if (way == QLatin1String("destroy field")) {
            delete std::exchange(f.fields[0], f.fields[1]);
        } else if (way == QLatin1String("destroy route")) {
            second.reset();
            QVHotKeyRecordingRoute::setShared(&f.route);
        } else {
            elsewhere.show();
            elsewhere.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&elsewhere));
        }
        QCOMPARE(f.fields[0]->isRecording(), !ends);
        QCOMPARE(f.brokenInvariant(), QString());
        QVERIFY2(bool(f.timers[0].pending) == !ends, "every way out cancels the time-out");
    }

    void withoutTheKeyboardQtKeysAndOwnHotKeysRecord()
    {
        Fixture f;
        QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
        f.base.platform.keyboardAvailable = false;
        QVHotKeyTextView *field = f.fields[0];
        // Idle, the field claims no shortcut, not even a line edit's copy keys.
        field->setFocus(Qt::TabFocusReason);
        QKeyEvent copy(QEvent::ShortcutOverride, Qt::Key_C, Qt::ControlModifier);
        copy.ignore();
        QApplication::sendEvent(field, &copy);
        QVERIFY(!copy.isAccepted());
        f.click(0);
        QVERIFY(field->readsApplicationKeyEvents());

        // Recording, it claims every combination; Tab is recorded, the focus stays (native code 23, X state Control).
        QKeyEvent override(QEvent::ShortcutOverride, Qt::Key_Tab, Qt::ControlModifier, 23, 0, 0x4);
        override.ignore();
        QApplication::sendEvent(field, &override);
        QVERIFY(override.isAccepted());
        QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::ControlModifier, 23, 0, 0x4, QStringLiteral("\t"));
        QApplication::sendEvent(field, &tab);
        QCOMPARE(field->text(), QStringLiteral("^⇥"));
        QCOMPARE(field->hotKey()->keyCode(), QVKeyCode::Tab);
        QVERIFY(field->hasFocus());

        // A press of Corvane's own hot key (once per registration of a shared grab) is a
        // candidate: it is refused as a conflict and does not act; its release still ends any repetition.
        f.click(0);
        QSignalSpy refusals(field, &QVHotKeyTextView::recordingRefused);
        for (const int subtype :
            { QVEvent::HotKeyPressed, QVEvent::HotKeyPressed, QVEvent::HotKeyReleased, QVEvent::HotKeyPressed }) {
            const quint64 reference = f.controls[1]->hotKey()->hotKeyReference();
            const quint64 flags = controlOption | LeftControl | LeftOption;
            QCOMPARE(f.send(QVEvent::SystemDefined, keyK, flags, false, subtype, reference),
                subtype == QVEvent::HotKeyPressed);
        }
        QCOMPARE(refusals.size(), 2);
        QCOMPARE(f.base.platform.beeps, 2);
        QCOMPARE(refusals.first().first().toString(), QStringLiteral("“^⌥K” is used by “Center”."));
        QVERIFY(field->isRecording());
        QCOMPARE(f.brokenInvariant(), QString());
    }

    void keyboardFollowsRecordingUnderRandomUse_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= 12; ++seed)
            QTest::addRow("seed %u", seed) << seed;
    }

    void keyboardFollowsRecordingUnderRandomUse()
    {
        QFETCH(quint32, seed);
        QRandomGenerator random(seed);
        Fixture f;
        QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
        f.answerAlerts([&random] { return random.bounded(2) == 0; });
        const quint16 letters[] = { keyJ, keyK, keyL, keyM };
        const quint64 modifiers[] = { 0, Shift, controlOption, Command, controlOption | Shift };
        const char *const kinds[] = { "click", "escape", "key", "modifier alone", "time-out", "clear", "space",
            "keyboard availability flipped" };
        QStringList steps;
        for (int step = 0; step < 80; ++step) {
            const int row = int(random.bounded(2));
            const int kind = int(random.bounded(8));
            steps << QStringLiteral("%1 %2").arg(QLatin1String(kinds[kind])).arg(row);
            switch (kind) {
            case 0: f.click(row); break;
            case 1: f.escape(); break;
            case 2: f.press(letters[random.bounded(4)], modifiers[random.bounded(5)]); break;
            case 3: f.press(keyShiftL, Shift, true); break;
            case 4: f.timers[row].fire(); break;
            case 5: QTest::mouseClick(f.buttons[row], Qt::LeftButton); break;
            case 6:
                f.fields[row]->setFocus(Qt::TabFocusReason);
                QTest::keyClick(f.fields[row], Qt::Key_Space);
                break;
            case 7: f.base.platform.keyboardAvailable = !f.base.platform.keyboardAvailable; break;
            }
            const QString broken = f.brokenInvariant();
            QVERIFY2(
                broken.isEmpty(), qPrintable(broken + QStringLiteral(" after: ") + steps.join(QStringLiteral(", "))));
        }
    }

    void clearButtonPictures()
    {
        QWidget background;
        background.setAutoFillBackground(true);
        background.setPalette(QPalette(Qt::white));
        QVHotKeyClearButton button(&background);
        button.resize(button.sizeHint());
        const QPoint middle(7, 3); // on the disc, beside the cross
        const QPoint corner(0, 0); // outside the disc
        const QImage disabled = button.grab().toImage();
        button.setEnabled(true);
        const QImage enabled = button.grab().toImage();
        button.setDown(true);
        const QImage pressed = button.grab().toImage();
        QVERIFY(qGray(disabled.pixel(middle)) > qGray(enabled.pixel(middle)));
        // Pressed: darker by a tenth of black, and only where the picture has ink.
        QVERIFY(qAbs(qGray(pressed.pixel(middle)) - int(qGray(enabled.pixel(middle)) * 0.9)) <= 2);
        QCOMPARE(pressed.pixel(corner), enabled.pixel(corner));
        QCOMPARE(pressed.pixel(corner), disabled.pixel(corner));
    }
};

QTEST_MAIN(TestHotKeyTextView)
#include "tst_hotkeytextview.moc"
