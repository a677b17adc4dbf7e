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

// Answers each alert, once it has the keyboard, with a real key.
class AlertAnswerer final : public QObject
{
public:
    AlertAnswerer(const QVTestXServer &server, const QString &key)
    {
        m_timer.setInterval(20);
        connect(&m_timer, &QTimer::timeout, this, [this, &server, key] {
            auto *alert = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!alert || alert == m_answered || !alert->isVisible() || !alert->isActiveWindow())
                return;
            m_answered = alert;
            titles.append(alert->windowTitle());
            QVERIFY(!server.run(QStringLiteral("xdotool"), { QStringLiteral("key"), key }).isNull());
        });
        m_timer.start();
    }

    QStringList titles;

private:
    QTimer m_timer;
    QPointer<QMessageBox> m_answered;
};

} // namespace

class TestX11HotKeyRecorder final : public QObject
{
    Q_OBJECT

public:
    TestX11HotKeyRecorder(const QVTestXServer &server, QVX11Platform &platform)
        : m_server(server)
        , m_platform(platform)
    {
    }

private Q_SLOTS:
    void init();
    void cleanup();
    void plainCombinationIsRecordedAndThenActs();
    void alertIsAnsweredWithKeys();
    void escapeCancelsAndShiftEscapeIsRecorded();
    void tabIsRecordedAndTheFocusStays();
    void combinationOfAnotherControlIsRefusedAndDoesNotAct();
    void combinationGrabbedByAnotherClientIsRefused();
    void clickOutsideTheWindowEndsRecording();
    void wheelOverAFieldScrollsTheList();

private:
    bool xdotool(const QStringList &arguments) const
    {
        return !m_server.run(QStringLiteral("xdotool"), arguments).isNull();
    }
    bool key(const QString &combination) const { return xdotool({ QStringLiteral("key"), combination }); }
    bool clickOn(const QWidget &widget) const
    {
        const QPoint center = widget.mapToGlobal(widget.rect().center());
        return xdotool({ QStringLiteral("mousemove"), QString::number(center.x()), QString::number(center.y()),
            QStringLiteral("click"), QStringLiteral("1") });
    }
    // Clicks the field and waits until it records with the keyboard.
    void startRecording(int row);
    // Whether another client could have the keyboard now (it gives it back at once).
    bool keyboardIsFree() const
    {
        if (!m_client->grabKeyboard())
            return false;
        m_client->ungrabKeyboard();
        return true;
    }
    // The control whose hot key the presses routed past the field matched.
    QList<QVCustomControlRepresentation *> m_performed;

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
    // What the application does with every event from the platform: the route first,
    // then the hot key path (the first control whose hot key matches acts).
    m_performed.clear();
    m_platform.setEventHandler([this](const QVEventRef &event) {
        if (m_route->routeEvent(event) || event->type != QVEvent::SystemDefined)
            return;
        for (const QVCustomControlRef &control : m_application->controls)
            if (control->hotKey() && control->hotKey()->matchesEvent(event.get())) {
                m_performed.append(control.get());
                return;
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
        const QVCustomControlRef control
            = m_application->addControl(row == 1 ? QVAction::MoveToCenter : QVAction::Move);
        field->setHotKeyDelegate(control.get());
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

void TestX11HotKeyRecorder::startRecording(int row)
{
    QVERIFY(clickOn(*m_fields[row]));
    QTRY_VERIFY(m_fields[row]->isRecording());
    QVERIFY(m_route->isKeyboardTaken());
    QVERIFY(!m_fields[row]->readsApplicationKeyEvents());
    QVERIFY2(!keyboardIsFree(), "the keyboard is Corvane's while recording");
}

void TestX11HotKeyRecorder::plainCombinationIsRecordedAndThenActs()
{
    QVHotKeyTextView *field = m_fields[0];
    QCOMPARE(field->text(), QStringLiteral("No Shortcut"));
    startRecording(0);
    QVERIFY(key(QStringLiteral("ctrl+alt+j")));
    QTRY_VERIFY(!field->isRecording());
    QCOMPARE(field->text(), QStringLiteral("^⌥J"));
    const QVHotKeyRef hotKey = m_application->controls[0]->hotKey();
    QCOMPARE(hotKey, field->hotKey());
    QVERIFY(hotKey->isRegistered());
    // The sides come from the real key events: xdotool presses the left keys.
    QCOMPARE(hotKey->modifierFlags() & (DeviceDependentMask | Control | Option),
        Control | Option | LeftControl | LeftOption);
    QVERIFY(keyboardIsFree());

    // Registered: pressed again, it reaches the hot key path.
    QVERIFY(key(QStringLiteral("ctrl+alt+j")));
    QTRY_COMPARE(m_performed, QList<QVCustomControlRepresentation *>({ m_application->controls[0].get() }));

    // With exact matching the text names the sides.
    m_defaults->setObject(true, QStringLiteral("Hot Keys Require Exact Modifier Key Matches"));
    field->hide();
    field->show();
    QCOMPARE(field->text(), QStringLiteral("Ⓛ^Ⓛ⌥J"));
}

void TestX11HotKeyRecorder::alertIsAnsweredWithKeys()
{
    QVHotKeyTextView *field = m_fields[0];
    {
        AlertAnswerer cancel(m_server, QStringLiteral("Escape"));
        startRecording(0);
        QVERIFY(key(QStringLiteral("j")));
        QTRY_COMPARE(cancel.titles, QStringList(QStringLiteral("Use “J”?")));
        QTRY_VERIFY(!field->isRecording());
        QCOMPARE(field->hotKey(), QVHotKeyRef());
        QCOMPARE(field->text(), QStringLiteral("No Shortcut"));
    }
    AlertAnswerer use(m_server, QStringLiteral("Return"));
    startRecording(0);
    QVERIFY(key(QStringLiteral("F5")));
    QTRY_COMPARE(use.titles, QStringList(QStringLiteral("Use “F5”?")));
    QTRY_VERIFY(!field->isRecording());
    QCOMPARE(field->text(), QStringLiteral("F5"));
    QVERIFY(field->hotKey()->isRegistered());
    QVERIFY(keyboardIsFree());
}

void TestX11HotKeyRecorder::escapeCancelsAndShiftEscapeIsRecorded()
{
    QVHotKeyTextView *field = m_fields[0];
    AlertAnswerer answerer(m_server, QStringLiteral("Escape"));
    startRecording(0);
    // A modifier key on its own is no candidate.
    QVERIFY(key(QStringLiteral("shift")));
    QTest::qWait(200);
    QVERIFY(field->isRecording());
    QVERIFY(key(QStringLiteral("Escape")));
    QTRY_VERIFY(!field->isRecording());
    QCOMPARE(field->text(), QStringLiteral("No Shortcut"));
    QVERIFY(keyboardIsFree());

    startRecording(0);
    QVERIFY(key(QStringLiteral("shift+Escape")));
    QTRY_VERIFY(!field->isRecording());
    QCOMPARE(field->text(), QStringLiteral("⇧Escape"));
    QCOMPARE(answerer.titles, QStringList());
}

void TestX11HotKeyRecorder::tabIsRecordedAndTheFocusStays()
{
    QVHotKeyTextView *field = m_fields[0];
    AlertAnswerer use(m_server, QStringLiteral("Return"));
    startRecording(0);
    QVERIFY(key(QStringLiteral("shift+Tab")));
    QTRY_VERIFY(!field->isRecording());
    QCOMPARE(field->text(), QStringLiteral("⇧⇥"));
    QTRY_COMPARE(QApplication::focusWidget(), field);

    startRecording(0);
    QVERIFY(key(QStringLiteral("Tab")));
    QTRY_COMPARE(use.titles, QStringList(QStringLiteral("Use “⇥”?")));
    QTRY_VERIFY(!field->isRecording());
    QCOMPARE(field->text(), QStringLiteral("⇥"));
    QTRY_COMPARE(QApplication::focusWidget(), field);
    // Tab is now a hot key: it goes to the hot key path, not to the window.
    QVERIFY(key(QStringLiteral("Tab")));
    QTRY_COMPARE(m_performed, QList<QVCustomControlRepresentation *>({ m_application->controls[0].get() }));
    QCOMPARE(QApplication::focusWidget(), field);
}

void TestX11HotKeyRecorder::combinationOfAnotherControlIsRefusedAndDoesNotAct()
{
    QVHotKeyTextView *field = m_fields[0];
    QSignalSpy refusals(field, &QVHotKeyTextView::recordingRefused);
    startRecording(0);
    QVERIFY(key(QStringLiteral("ctrl+alt+k")));
    QTRY_COMPARE(refusals.size(), 1);
    QCOMPARE(refusals.first().first().toString(), QStringLiteral("“^⌥K” is used by “Center”."));
    QVERIFY(field->isRecording());
    QVERIFY(m_route->isKeyboardTaken());
    QVERIFY(key(QStringLiteral("Escape")));
    QTRY_VERIFY(!field->isRecording());
    QCOMPARE(m_performed, QList<QVCustomControlRepresentation *>());
    // The other control's hot key still works once the field is idle.
    QVERIFY(key(QStringLiteral("ctrl+alt+k")));
    QTRY_COMPARE(m_performed, QList<QVCustomControlRepresentation *>({ m_application->controls[1].get() }));
}

void TestX11HotKeyRecorder::combinationGrabbedByAnotherClientIsRefused()
{
    QVERIFY(m_client->grabKey(keyL, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1));
    QVHotKeyTextView *field = m_fields[0];
    QSignalSpy refusals(field, &QVHotKeyTextView::recordingRefused);
    startRecording(0);
    QVERIFY(key(QStringLiteral("ctrl+alt+l")));
    QTRY_COMPARE(refusals.size(), 1);
    QCOMPARE(refusals.first().first().toString(), QStringLiteral("“^⌥L” is held by another program."));
    QVERIFY(field->isRecording());
    QVERIFY2(!m_client->receivedKeyPress(keyL, 200), "Corvane's keyboard grab comes before the other's key grab");
    QVERIFY(key(QStringLiteral("Escape")));
    QTRY_VERIFY(!field->isRecording());
    QCOMPARE(field->hotKey(), QVHotKeyRef());
    QVERIFY(keyboardIsFree());
}

void TestX11HotKeyRecorder::clickOutsideTheWindowEndsRecording()
{
    startRecording(0);
    QVERIFY(xdotool({ QStringLiteral("mousemove"), QStringLiteral("1200"), QStringLiteral("750"),
        QStringLiteral("click"), QStringLiteral("1") }));
    QTRY_VERIFY(!m_fields[0]->isRecording());
    QVERIFY(keyboardIsFree());
}

void TestX11HotKeyRecorder::wheelOverAFieldScrollsTheList()
{
    QScrollBar *bar = m_scrollArea->verticalScrollBar();
    QVERIFY(bar->maximum() > 0);
    QCOMPARE(bar->value(), 0);
    const QPoint center = m_fields[1]->mapToGlobal(m_fields[1]->rect().center());
    QVERIFY(xdotool({ QStringLiteral("mousemove"), QString::number(center.x()), QString::number(center.y()) }));
    QTRY_COMPARE(QApplication::widgetAt(center), m_fields[1]);
    QVERIFY(xdotool({ QStringLiteral("click"), QStringLiteral("5") }));
    QTRY_VERIFY(bar->value() > 0);
}

int main(int argc, char *argv[])
{
    QString error;
    const std::unique_ptr<QVTestXServer> server = QVTestXServer::startXvfb(1280, 800, &error);
    if (!server) {
        qCritical("%s", qPrintable(error));
        return 1;
    }
    qputenv("DISPLAY", server->displayName().toLatin1());
    qputenv("QT_QPA_PLATFORM", "xcb");
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
