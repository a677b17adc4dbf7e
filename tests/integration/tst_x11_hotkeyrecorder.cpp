// The hot key field on a real X server with the real X11 back end, in this
// process: keys pressed with xdotool while a field records, combinations held by
// another control or another client, the alert answered with keys, and the wheel.
#include "QVHotKeyClearButton.h"
#include "QVHotKeyRecordingRoute.h"
#include "QVHotKeyTextView.h"
#include "QVRecorderTestApplication.h"
#include "QVTestXClient.h"
#include "QVTestXServer.h"
#include "QVUserDefaults.h"
#include "QVX11Connection.h"
#include "QVX11Platform.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QVBoxLayout>

using namespace QVModifierFlag;

namespace
{

constexpr xcb_keycode_t keyK = 45;
constexpr xcb_keycode_t keyL = 46;
constexpr int rowCount = 12;

} // namespace

class TestX11HotKeyRecorder final : public QObject
{
    Q_OBJECT

public:
    TestX11HotKeyRecorder(const QVTestXServer &server, QVX11Platform &platform)
        : m_server(server)
        , m_platform(platform)
    {
        // Each alert is answered, once it has the keyboard, with a real key.
        connect(&m_alertTimer, &QTimer::timeout, this, [this] {
            auto *alert = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!alert || alert == m_answered || !alert->isVisible() || !alert->isActiveWindow())
                return;
            m_answered = alert;
            m_alertTitles.append(alert->windowTitle());
            QVERIFY(key(m_alertKey));
        });
        m_alertTimer.start(20);
    }

private Q_SLOTS:
    void init();
    void cleanup();

    void plainCombinationIsRecordedAndThenActs()
    {
        QVHotKeyTextView *field = m_fields[0];
        QCOMPARE(field->text(), QStringLiteral("No Shortcut"));
        record(QStringLiteral("ctrl+alt+j"));
        QCOMPARE(field->text(), QStringLiteral("^⌥J"));
        const QVHotKeyRef hotKey = m_application->controls[0]->hotKey();
        QCOMPARE(hotKey, field->hotKey());
        QVERIFY(hotKey->isRegistered());
        // The sides come from the real key events: xdotool presses the left keys.
        QCOMPARE(hotKey->modifierFlags() & (DeviceDependentMask | Control | Option),
            Control | Option | LeftControl | LeftOption);

        // Registered: pressed again, it reaches the hot key path.
        QVERIFY(key(QStringLiteral("ctrl+alt+j")));
        QTRY_COMPARE(m_performed, QList<int>({ 0 }));

        // With exact matching the text names the sides.
        m_defaults->setObject(true, QStringLiteral("Hot Keys Require Exact Modifier Key Matches"));
        field->hide();
        field->show();
        QCOMPARE(field->text(), QStringLiteral("Ⓛ^Ⓛ⌥J"));
    }

    void alertIsAnsweredWithKeys()
    {
        QVHotKeyTextView *field = m_fields[0];
        record(QStringLiteral("j"));
        QCOMPARE(m_alertTitles, QStringList(QStringLiteral("Use “J”?")));
        QCOMPARE(field->hotKey(), QVHotKeyRef());
        QCOMPARE(field->text(), QStringLiteral("No Shortcut"));

        m_alertKey = QStringLiteral("Return");
        record(QStringLiteral("F5"));
        QCOMPARE(m_alertTitles.last(), QStringLiteral("Use “F5”?"));
        QCOMPARE(field->text(), QStringLiteral("F5"));
        QVERIFY(field->hotKey()->isRegistered());
    }

    void escapeCancelsAndShiftEscapeIsRecorded()
    {
        QVHotKeyTextView *field = m_fields[0];
        startRecording();
        // A modifier key on its own is no candidate.
        QVERIFY(key(QStringLiteral("shift")));
        QTest::qWait(200);
        QVERIFY(field->isRecording());
        record(QStringLiteral("Escape"));
        QCOMPARE(field->text(), QStringLiteral("No Shortcut"));

        record(QStringLiteral("shift+Escape"));
        QCOMPARE(field->text(), QStringLiteral("⇧Escape"));
        QCOMPARE(m_alertTitles, QStringList());
    }

    void tabIsRecordedAndTheFocusStays()
    {
        QVHotKeyTextView *field = m_fields[0];
        m_alertKey = QStringLiteral("Return");
        record(QStringLiteral("shift+Tab"));
        QCOMPARE(field->text(), QStringLiteral("⇧⇥"));
        QTRY_COMPARE(QApplication::focusWidget(), field);

        record(QStringLiteral("Tab"));
        QCOMPARE(m_alertTitles, QStringList(QStringLiteral("Use “⇥”?")));
        QCOMPARE(field->text(), QStringLiteral("⇥"));
        QTRY_COMPARE(QApplication::focusWidget(), field);
        // Tab is now a hot key: it goes to the hot key path, not to the window.
        QVERIFY(key(QStringLiteral("Tab")));
        QTRY_COMPARE(m_performed, QList<int>({ 0 }));
        QCOMPARE(QApplication::focusWidget(), field);
    }

    void combinationOfAnotherControlIsRefusedAndDoesNotAct()
    {
        refused(QStringLiteral("ctrl+alt+k"), QStringLiteral("“^⌥K” is used by “Center”."));
        record(QStringLiteral("Escape"));
        QCOMPARE(m_performed, QList<int>());
        // The other control's hot key still works once the field is idle.
        QVERIFY(key(QStringLiteral("ctrl+alt+k")));
        QTRY_COMPARE(m_performed, QList<int>({ 1 }));
    }

    void combinationGrabbedByAnotherClientIsRefused()
    {
        QVERIFY(m_client->grabKey(keyL, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1));
        refused(QStringLiteral("ctrl+alt+l"), QStringLiteral("“^⌥L” is held by another program."));
        QVERIFY2(!m_client->receivedKeyPress(keyL, 200), "Corvane's keyboard grab comes before the other's key grab");
        record(QStringLiteral("Escape"));
        QCOMPARE(m_fields[0]->hotKey(), QVHotKeyRef());
    }

    void clickOutsideTheWindowEndsRecording()
    {
        startRecording();
        QVERIFY(pointAt(QPoint(1200, 750), QStringLiteral("1")));
        recordingEnds();
    }

    void wheelOverAFieldScrollsTheList()
    {
        QScrollBar *bar = m_scrollArea->verticalScrollBar();
        QVERIFY(bar->maximum() > 0);
        QCOMPARE(bar->value(), 0);
        const QPoint center = m_fields[1]->mapToGlobal(m_fields[1]->rect().center());
        QVERIFY(pointAt(center));
        QTRY_COMPARE(QApplication::widgetAt(center), m_fields[1]);
        QVERIFY(xdotool({ QStringLiteral("click"), QStringLiteral("5") }));
        QTRY_VERIFY(bar->value() > 0);
    }

private:
    bool xdotool(const QStringList &arguments) const
    {
        return !m_server.run(QStringLiteral("xdotool"), arguments).isNull();
    }
    bool key(const QString &combination) const { return xdotool({ QStringLiteral("key"), combination }); }
    // Moves the pointer to a point on the screen, then clicks the button if one is named.
    bool pointAt(QPoint point, const QString &button = {}) const
    {
        QStringList arguments { QStringLiteral("mousemove"), QString::number(point.x()), QString::number(point.y()) };
        if (!button.isEmpty())
            arguments << QStringLiteral("click") << button;
        return xdotool(arguments);
    }
    // Clicks field 0 and waits until it records with the keyboard.
    void startRecording()
    {
        QVERIFY(pointAt(m_fields[0]->mapToGlobal(m_fields[0]->rect().center()), QStringLiteral("1")));
        QTRY_VERIFY(m_fields[0]->isRecording());
        QVERIFY(!m_fields[0]->readsApplicationKeyEvents());
        QVERIFY2(!keyboardIsFree(), "the keyboard is Corvane's while recording");
    }
    // Presses the combination while field 0 records (starting it if need be), until it no longer does.
    void record(const QString &combination)
    {
        if (!m_fields[0]->isRecording())
            startRecording();
        QVERIFY(key(combination));
        recordingEnds();
    }
    // Waits until field 0 stops recording; then the keyboard is free again.
    void recordingEnds()
    {
        QTRY_VERIFY(!m_fields[0]->isRecording());
        QVERIFY2(keyboardIsFree(), "the keyboard is given back");
    }
    // The combination pressed while field 0 records is refused with the message; recording goes on.
    void refused(const QString &combination, const QString &message)
    {
        QSignalSpy refusals(m_fields[0], &QVHotKeyTextView::recordingRefused);
        startRecording();
        QVERIFY(key(combination));
        QTRY_COMPARE(refusals.size(), 1);
        QCOMPARE(refusals.first().first().toString(), message);
        QVERIFY(m_fields[0]->isRecording());
        QVERIFY2(!keyboardIsFree(), "the keyboard stays Corvane's");
    }
    // Whether another client could have the keyboard now (it gives it back at once).
    bool keyboardIsFree() const
    {
        if (!m_client->grabKeyboard())
            return false;
        m_client->ungrabKeyboard();
        return true;
    }

    const QVTestXServer &m_server;
    QVX11Platform &m_platform;
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<QVUserDefaults> m_defaults;
    std::unique_ptr<QVHotKeyRecordingRoute> m_route;
    std::unique_ptr<QVRecorderTestApplication> m_application;
    std::unique_ptr<QVTestXClient> m_client;
    std::unique_ptr<QWidget> m_window;
    QScrollArea *m_scrollArea = nullptr;
    QList<QVHotKeyTextView *> m_fields;
    QList<int> m_performed; // the rows whose hot key the presses routed past the field matched
    QTimer m_alertTimer;
    QPointer<QMessageBox> m_answered;
    QString m_alertKey; // what answers the alerts
    QStringList m_alertTitles;
};

void TestX11HotKeyRecorder::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    m_defaults = std::make_unique<QVUserDefaults>(m_directory->filePath(QStringLiteral("settings.json")));
    QVUserDefaults::setStandardUserDefaults(m_defaults.get());
    m_route = std::make_unique<QVHotKeyRecordingRoute>(m_platform);
    QVHotKeyRecordingRoute::setShared(m_route.get());
    m_application = std::make_unique<QVRecorderTestApplication>(m_platform);
    m_client = std::make_unique<QVTestXClient>(m_server.displayName());
    QVERIFY(m_client->isConnected());
    m_alertKey = QStringLiteral("Escape");
    m_alertTitles.clear();
    // What the application does with every event from the platform: the route first,
    // then the hot key path (the first control whose hot key matches acts).
    m_performed.clear();
    m_platform.setEventHandler([this](const QVEventRef &event) {
        if (m_route->routeEvent(event) || event->type != QVEvent::SystemDefined)
            return;
        for (int row = 0; row < rowCount; ++row) {
            const QVHotKeyRef &hotKey = m_application->controls[row]->hotKey();
            if (hotKey && hotKey->matchesEvent(event.get()))
                return m_performed.append(row);
        }
    });

    // Rows in a short scrolling list: a Move without hot key, a Center holding ^⌥K, then more.
    m_window = std::make_unique<QWidget>();
    auto *content = new QWidget;
    auto *rows = new QVBoxLayout(content);
    m_fields.clear();
    for (int row = 0; row < rowCount; ++row) {
        auto *line = new QHBoxLayout;
        auto *field = new QVHotKeyTextView(content);
        auto *button = new QVHotKeyClearButton(content);
        field->setMinimumWidth(160);
        field->setDeleteButton(button);
        field->setHotKeyDelegate(m_application->addControl(row == 1 ? QVAction::MoveToCenter : QVAction::Move).get());
        line->addWidget(field);
        line->addWidget(button);
        rows->addLayout(line);
        m_fields.append(field);
    }
    QVERIFY(QVRecorderTestApplication::giveHotKey(
        *m_application->controls[1], keyK, Control | Option, QStringLiteral("^⌥K")));
    m_fields[1]->setHotKey(m_application->controls[1]->hotKey());
    m_scrollArea = new QScrollArea(m_window.get());
    m_scrollArea->setWidget(content);
    m_scrollArea->setWidgetResizable(true);
    m_scrollArea->setFixedHeight(200);
    (new QVBoxLayout(m_window.get()))->addWidget(m_scrollArea);
    m_window->move(100, 100);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    m_window->activateWindow();
    QTRY_VERIFY(m_window->isActiveWindow());
}

void TestX11HotKeyRecorder::cleanup()
{
    m_window.reset();
    m_client.reset(); // its grabs go with it
    m_platform.setEventHandler(nullptr);
    QVHotKeyRecordingRoute::setShared(nullptr);
    m_route.reset();
    m_application.reset();
    QVUserDefaults::setStandardUserDefaults(nullptr);
    m_defaults.reset();
}

int main(int argc, char *argv[])
{
    const std::unique_ptr<QVTestXServer> server = QVTestXServer::startXvfbForThisProcess(1280, 800);
    if (!server)
        return 1;
    QString error;
    QApplication application(argc, argv);
    std::unique_ptr<QVX11Connection> connection = QVX11Connection::open(server->displayName().toLatin1(), &error);
    std::unique_ptr<QVX11Platform> platform = connection ? QVX11Platform::open(std::move(connection), &error) : nullptr;
    if (!platform) {
        qCritical("%s", qPrintable(error));
        return 1;
    }
    TestX11HotKeyRecorder test(*server, *platform);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_x11_hotkeyrecorder.moc"
