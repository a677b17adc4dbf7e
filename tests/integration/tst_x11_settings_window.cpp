// The settings window as a person and a screen reader meet it: found over
// AT-SPI by role and name, clicked with the pointer, its effects read from the
// settings file, the window manager hints and the processes that run.
#include "QVAccessibilityTree.h"
#include "QVCorvaneProcess.h"
#include "QVTestSessionBus.h"
#include "QVTestStatusNotifierWatcher.h"
#include "QVTestXClient.h"
#include "QVTestXServer.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QUrl>
#include <QtTest>

#include <csignal>

namespace
{
const QString application = QStringLiteral("corvane");
const QString skipTaskbar = QStringLiteral("_NET_WM_STATE_SKIP_TASKBAR");
// A pop-up is named by the item it shows; the toolbar's pages are checkable buttons.
const QString taskbarMode = QStringLiteral("Window in the task bar");
} // namespace

class TestX11SettingsWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void pagesAreReachableAndNamed();
    void generalPageWritesWhatItShows();
    void helpOpensTheInstalledPage();
    void secondLaunchBringsTheWindowBackOnItsLastPage();
    void leavingTheTaskbarRestartsIntoTheTray();
    void actionsEditorBuildsAWorkingControl();

private:
    void startCorvane(const QJsonObject &settings);
    const QVAccessibilityTree::Node *waitFor(const QString &role, const QString &name)
    {
        return m_tree->waitFor(application, role, name);
    }
    void click(const QVAccessibilityTree::Node *node);
    int windowHeight();

    std::unique_ptr<QVTestXServer> m_server;
    std::unique_ptr<QVTestXClient> m_client;
    std::unique_ptr<QVTestSessionBus> m_bus;
    std::unique_ptr<QVTestStatusNotifierWatcher> m_watcher;
    std::unique_ptr<QVAccessibilityTree> m_tree;
    std::unique_ptr<QVCorvaneProcess> m_corvane;
    QString m_settingsPath;
    QString m_openedLog; // what the recording xdg-open was given
};

void TestX11SettingsWindow::initTestCase()
{
    QString error;
    m_server = QVTestXServer::startXvfb(1280, 800, &error);
    QVERIFY2(m_server, qPrintable(error));
    m_client = std::make_unique<QVTestXClient>(m_server->displayName());
    QVERIFY(m_client->isConnected());
}

void TestX11SettingsWindow::init()
{
    QString error;
    m_bus = std::make_unique<QVTestSessionBus>();
    QVERIFY2(m_bus->start(&error), qPrintable(error));
    m_watcher = std::make_unique<QVTestStatusNotifierWatcher>(m_bus->connection());
    QVERIFY2(m_watcher->registerOnBus(&error), qPrintable(error));
    const QString accessibilityBus = m_bus->accessibilityBusAddress();
    QVERIFY(!accessibilityBus.isEmpty());
    m_tree = std::make_unique<QVAccessibilityTree>(m_bus->address(), accessibilityBus);
    m_settingsPath
        = m_server->temporaryPath(QString::fromLatin1(QTest::currentTestFunction()) + QStringLiteral(".json"));
}

void TestX11SettingsWindow::cleanup()
{
    m_corvane.reset();
    m_tree.reset();
    m_watcher.reset();
    m_bus.reset();
}

void TestX11SettingsWindow::startCorvane(const QJsonObject &settings)
{
    QVCorvaneProcess::writeSettings(m_settingsPath, settings);
    m_corvane = std::make_unique<QVCorvaneProcess>(m_server->displayName(), m_settingsPath);
    m_corvane->joinSessionBus(m_bus->address(), true);
    m_corvane->setEnvironmentVariable(
        QStringLiteral("XDG_CONFIG_HOME"), m_server->temporaryPath(QStringLiteral("config")));
    // A recording xdg-open first on the path, in a folder that may hold programs.
    const QString bin = QStringLiteral(CORVANE_TEST_BIN_DIR "/recording-bin");
    QDir().mkpath(bin);
    m_openedLog = m_server->temporaryPath(QStringLiteral("opened.txt"));
    QFile script(bin + QStringLiteral("/xdg-open"));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nprintf '%s\\n' \"$@\" >> \"$CORVANE_TEST_OPENED\"\n");
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    m_corvane->setEnvironmentVariable(QStringLiteral("CORVANE_TEST_OPENED"), m_openedLog);
    m_corvane->setEnvironmentVariable(QStringLiteral("PATH"), bin + u':' + qEnvironmentVariable("PATH"));
    QVERIFY2(m_corvane->start(), qPrintable(m_corvane->log()));
}

void TestX11SettingsWindow::click(const QVAccessibilityTree::Node *node)
{
    QVERIFY2(node, qPrintable(m_tree->dump()));
    const QPoint at = node->center();
    m_server->run(QStringLiteral("xdotool"),
        { QStringLiteral("mousemove"), QString::number(at.x()), QString::number(at.y()), QStringLiteral("click"),
            QStringLiteral("1") });
    QTest::qWait(450); // two clicks closer together would be a double click
}

int TestX11SettingsWindow::windowHeight()
{
    const std::optional<QVTestXClient::TopLevel> window = m_client->viewableTopLevel(QStringLiteral("Corvane"));
    return window ? window->geometry.height() : -1;
}

void TestX11SettingsWindow::pagesAreReachableAndNamed()
{
    startCorvane({});
    QVERIFY2(waitFor(QStringLiteral("combo box"), taskbarMode), qPrintable(m_tree->dump()));
    QVERIFY2(m_tree->unnamedControls().isEmpty(), qPrintable(m_tree->dump()));
    // Mode 0: an ordinary window of the task bar.
    std::optional<QVTestXClient::TopLevel> window = m_client->viewableTopLevel(QStringLiteral("Corvane"));
    QVERIFY(window);
    QVERIFY(!window->states.contains(skipTaskbar));
    const int generalHeight = windowHeight();

    click(m_tree->find(QStringLiteral("check box"), QStringLiteral("Updates")));
    QVERIFY2(waitFor(QStringLiteral("check box"), QStringLiteral("Check for updates automatically")),
        qPrintable(m_tree->dump()));
    QVERIFY2(m_tree->unnamedControls().isEmpty(), qPrintable(m_tree->dump()));
    QTRY_VERIFY(windowHeight() != generalHeight); // fitted to the page, after its animation

    click(m_tree->find(QStringLiteral("check box"), QStringLiteral("Actions")));
    QVERIFY2(waitFor(QStringLiteral("list"), QStringLiteral("Custom controls")), qPrintable(m_tree->dump()));

    click(m_tree->find(QStringLiteral("check box"), QStringLiteral("General")));
    QVERIFY(waitFor(QStringLiteral("check box"), QStringLiteral("Start at login")));
    QTRY_COMPARE(windowHeight(), generalHeight);
    if (!qEnvironmentVariableIsEmpty("CORVANE_SCREENSHOT_DIR"))
        m_server->run(QStringLiteral("import"),
            { QStringLiteral("-window"), QStringLiteral("root"),
                qEnvironmentVariable("CORVANE_SCREENSHOT_DIR") + QStringLiteral("/settings-general.png") });
}

void TestX11SettingsWindow::generalPageWritesWhatItShows()
{
    startCorvane({});
    const auto *showAtLaunch = waitFor(QStringLiteral("check box"), QStringLiteral("Show settings at launch"));
    QVERIFY2(showAtLaunch, qPrintable(m_tree->dump()));
    QVERIFY(showAtLaunch->has(QStringLiteral("checked")));
    click(showAtLaunch);
    QTRY_VERIFY(QVCorvaneProcess::readSettings(m_settingsPath).value(QStringLiteral("Stealth Mode")).toBool());

    // Start at login writes the user's autostart entry, naming this binary and its settings.
    click(m_tree->find(QStringLiteral("check box"), QStringLiteral("Start at login")));
    const QString entry = m_server->temporaryPath(QStringLiteral("config/autostart/corvane.desktop"));
    QTRY_VERIFY(QFile::exists(entry));
    const QByteArray contents = QVCorvaneProcess::readFile(entry);
    QVERIFY2(contents.contains(QStringLiteral(CORVANE_BINARY).toUtf8()), contents.constData());
    QVERIFY2(contents.contains(m_settingsPath.toUtf8()), contents.constData());
    click(m_tree->find(QStringLiteral("check box"), QStringLiteral("Start at login")));
    QTRY_VERIFY(!QFile::exists(entry));
}

void TestX11SettingsWindow::helpOpensTheInstalledPage()
{
    startCorvane({});
    click(waitFor(QStringLiteral("push button"), QStringLiteral("Help")));
    QTRY_VERIFY(QFile::exists(m_openedLog));
    const QString opened = QString::fromUtf8(QVCorvaneProcess::readFile(m_openedLog)).trimmed();
    QVERIFY2(opened.startsWith(QLatin1String("file:///")) && opened.endsWith(QLatin1String("/overview.html")),
        qPrintable(opened));
    QVERIFY(QFile::exists(QUrl(opened).toLocalFile()));
    // Help is an action, never a page: the page shown stays.
    QVERIFY(m_tree->waitFor(application, QStringLiteral("combo box"), taskbarMode));
}

void TestX11SettingsWindow::secondLaunchBringsTheWindowBackOnItsLastPage()
{
    // In the background there is no window and no icon: launching again is the way in.
    startCorvane({ { QStringLiteral("Application Mode"), 2 }, { QStringLiteral("Stealth Mode"), true } });
    QTest::qWait(500);
    QVERIFY(!m_client->viewableTopLevel(QStringLiteral("Corvane")));

    QVCorvaneProcess second(m_server->displayName(), m_settingsPath);
    second.joinSessionBus(m_bus->address());
    QVERIFY(!second.start()); // it hands over and ends
    QTRY_VERIFY(!second.isRunning());
    QVERIFY2(waitFor(QStringLiteral("check box"), QStringLiteral("Start at login")), qPrintable(m_tree->dump()));
    std::optional<QVTestXClient::TopLevel> window = m_client->viewableTopLevel(QStringLiteral("Corvane"));
    QVERIFY(window);
    QVERIFY(window->states.contains(skipTaskbar)); // not a task bar window in this mode
    const auto explanation
        = std::find_if(m_tree->nodes().begin(), m_tree->nodes().end(), [](const QVAccessibilityTree::Node &node) {
              return node.name.startsWith(QLatin1String("Corvane has neither"));
          });
    QVERIFY2(explanation != m_tree->nodes().end() && explanation->has(QStringLiteral("showing")),
        qPrintable(m_tree->dump()));

    click(m_tree->find(QStringLiteral("check box"), QStringLiteral("Actions")));
    QVERIFY(waitFor(QStringLiteral("list"), QStringLiteral("Custom controls")));
    m_client->closeWindow(window->window);
    QTRY_VERIFY(!m_client->viewableTopLevel(QStringLiteral("Corvane")));

    QVCorvaneProcess third(m_server->displayName(), m_settingsPath);
    third.joinSessionBus(m_bus->address());
    third.start();
    QVERIFY2(waitFor(QStringLiteral("list"), QStringLiteral("Custom controls")), qPrintable(m_tree->dump()));
    QVERIFY(m_corvane->isRunning());
}

void TestX11SettingsWindow::leavingTheTaskbarRestartsIntoTheTray()
{
    startCorvane({});
    const auto *mode = waitFor(QStringLiteral("combo box"), taskbarMode);
    QVERIFY2(mode, qPrintable(m_tree->dump()));
    const std::optional<QVTestXClient::TopLevel> before = m_client->viewableTopLevel(QStringLiteral("Corvane"));
    QVERIFY(before);
    click(mode);
    m_server->run(
        QStringLiteral("xdotool"), { QStringLiteral("key"), QStringLiteral("Down"), QStringLiteral("Return") });

    // The old process ends half a second later; a new one takes over in the tray, its
    // settings window open on General and out of the task bar.
    QTRY_VERIFY_WITH_TIMEOUT(!m_corvane->isRunning(), 10000);
    QCOMPARE(QVCorvaneProcess::readSettings(m_settingsPath).value(QStringLiteral("Application Mode")).toInt(), 1);
    QTRY_VERIFY_WITH_TIMEOUT(!m_watcher->lastItemService().isEmpty(), 15000);
    std::optional<QVTestXClient::TopLevel> after;
    QTRY_VERIFY_WITH_TIMEOUT((after = m_client->viewableTopLevel(QStringLiteral("Corvane"))).has_value(), 10000);
    auto stopNew = qScopeGuard([&after] { ::kill(pid_t(after->pid), SIGTERM); });
    QVERIFY(after->pid != 0 && after->pid != before->pid);
    QVERIFY(after->states.contains(skipTaskbar));
    QVERIFY2(
        waitFor(QStringLiteral("combo box"), QStringLiteral("Icon in the system tray")), qPrintable(m_tree->dump()));
    // The page was handed over once.
    QVERIFY(!QVCorvaneProcess::readSettings(m_settingsPath).contains(QStringLiteral("Preferences Section")));
}

void TestX11SettingsWindow::actionsEditorBuildsAWorkingControl()
{
    startCorvane({ { QStringLiteral("Preferences Section"), QStringLiteral("Actions") } });
    QVERIFY2(waitFor(QStringLiteral("list"), QStringLiteral("Custom controls")), qPrintable(m_tree->dump()));
    const auto storedControls = [this] {
        return QVCorvaneProcess::readSettings(m_settingsPath).value(QStringLiteral("Custom Controls")).toArray();
    };

    // A new control shows as a selected item, and is written without waiting for the quit.
    click(m_tree->find(QStringLiteral("push button"), QStringLiteral("Add Control")));
    const auto *item = waitFor(QStringLiteral("list item"), QStringLiteral("Move Right"));
    QVERIFY2(item && item->has(QStringLiteral("selected")), qPrintable(m_tree->dump()));
    QVERIFY2(m_tree->unnamedControls().isEmpty(), qPrintable(m_tree->dump()));
    QTRY_COMPARE_WITH_TIMEOUT(storedControls().size(), 1, 5000);

    // A radio of the direction changes the control, and so its name.
    click(m_tree->find(QStringLiteral("radio button"), QStringLiteral("Direction: Down & Right")));
    QVERIFY2(waitFor(QStringLiteral("list item"), QStringLiteral("Move Down & Right")), qPrintable(m_tree->dump()));
    QTRY_COMPARE_WITH_TIMEOUT(
        storedControls().at(0).toObject().value(QStringLiteral("Move Direction")).toInt(), 6, 5000);

    // A hot key recorded in the field works at once.
    click(m_tree->find(QStringLiteral("text"), QStringLiteral("Hot key of Move Down & Right")));
    m_server->run(QStringLiteral("xdotool"), { QStringLiteral("key"), QStringLiteral("ctrl+alt+k") });
    QTRY_COMPARE_WITH_TIMEOUT(storedControls()
                                  .at(0)
                                  .toObject()
                                  .value(QStringLiteral("Hot Key"))
                                  .toObject()
                                  .value(QStringLiteral("Visual Representation"))
                                  .toString(),
        QStringLiteral("^⌥K"), 5000);
    m_client->movePointer(QPoint(300, 300));
    m_server->run(QStringLiteral("xdotool"), { QStringLiteral("key"), QStringLiteral("ctrl+alt+k") });
    QTRY_COMPARE(m_client->pointer(), QPoint(301, 301));
}

QTEST_GUILESS_MAIN(TestX11SettingsWindow)
#include "tst_x11_settings_window.moc"
