// The tray icon and its menu as a panel meets them: over the StatusNotifierItem
// protocol and com.canonical.dbusmenu on a private session bus, and embedded
// the older way by an XEmbed tray.
#include "QVCorvaneProcess.h"
#include "QVTestDBusMenu.h"
#include "QVTestSessionBus.h"
#include "QVTestStatusNotifierWatcher.h"
#include "QVTestXServer.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QJsonArray>
#include <QRegularExpression>
#include <QtTest>

#include <csignal>

namespace
{

constexpr quint16 rightArrow = 114;
constexpr quint64 controlAlt = 0x40000 | 0x80000;

QJsonObject heading(const QString &title)
{
    return QJsonObject { { QStringLiteral("Action"), -101 }, { QStringLiteral("Title"), title } };
}

QJsonObject separator()
{
    return QJsonObject { { QStringLiteral("Action"), 0 } };
}

QPoint pointerLocation(const QVTestXServer &server)
{
    const QString output = server.run(QStringLiteral("xdotool"), { QStringLiteral("getmouselocation") });
    const QRegularExpressionMatch match = QRegularExpression(QStringLiteral("x:(\\d+) y:(\\d+)")).match(output);
    return match.hasMatch() ? QPoint(match.captured(1).toInt(), match.captured(2).toInt()) : QPoint(-1, -1);
}

// How many sizes of its icon the tray item offers: an array of (width, height, ARGB bytes).
int iconPixmapCount(const QVariant &property)
{
    if (!property.canConvert<QDBusArgument>())
        return 0;
    const QDBusArgument argument = property.value<QDBusArgument>();
    int count = 0;
    argument.beginArray();
    while (!argument.atEnd()) {
        int width = 0, height = 0;
        QByteArray pixels;
        argument.beginStructure();
        argument >> width >> height >> pixels;
        argument.endStructure();
        count += width > 0 && height > 0 && pixels.size() == width * height * 4;
    }
    argument.endArray();
    return count;
}

} // namespace

class TestX11Tray : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void menuListsTheControlsAndPerformsThem();
    void controlAndAltOpenTheDebugLoggingSwitch();
    void menuFollowsTheSettingsAtEveryOpening();
    void quitFromTheMenuSaves();
    void xembedTrayShowsTheIconAndItsMenu();

private:
    void startCorvane(const QJsonObject &settings, bool withWatcher = true);
    QVTestDBusMenu &menu() { return *m_menu; }
    void openMenu() { QVERIFY(m_menu->aboutToShow()); }
    void closeMenu();

    std::unique_ptr<QVTestXServer> m_server;
    std::unique_ptr<QVTestSessionBus> m_bus;
    std::unique_ptr<QVTestStatusNotifierWatcher> m_watcher;
    std::unique_ptr<QVCorvaneProcess> m_corvane;
    std::unique_ptr<QVTestDBusMenu> m_menu;
    QString m_settingsPath;
};

void TestX11Tray::initTestCase()
{
    QString error;
    m_server = QVTestXServer::startXvfb(1280, 800, &error);
    QVERIFY2(m_server, qPrintable(error));
}

void TestX11Tray::init()
{
    QString error;
    m_bus = std::make_unique<QVTestSessionBus>();
    QVERIFY2(m_bus->start(&error), qPrintable(error));
    m_settingsPath
        = m_server->temporaryPath(QString::fromLatin1(QTest::currentTestFunction()) + QStringLiteral(".json"));
}

void TestX11Tray::cleanup()
{
    m_menu.reset();
    m_corvane.reset();
    m_watcher.reset();
    m_bus.reset();
}

void TestX11Tray::startCorvane(const QJsonObject &settings, bool withWatcher)
{
    QString error;
    if (withWatcher) {
        // Qt looks for a tray host once, at start: the watcher must be there first.
        m_watcher = std::make_unique<QVTestStatusNotifierWatcher>(m_bus->connection());
        QVERIFY2(m_watcher->registerOnBus(&error), qPrintable(error));
    }
    QVCorvaneProcess::writeSettings(m_settingsPath, settings);
    m_corvane = std::make_unique<QVCorvaneProcess>(m_server->displayName(), m_settingsPath);
    m_corvane->joinSessionBus(m_bus->address());
    QVERIFY2(m_corvane->start(), qPrintable(m_corvane->log()));
    if (!withWatcher)
        return;
    QTRY_VERIFY2_WITH_TIMEOUT(!m_watcher->lastItemService().isEmpty(), qPrintable(m_corvane->log()), 10000);
    m_menu = std::make_unique<QVTestDBusMenu>(m_bus->connection(), m_watcher->lastItemService());
    QVERIFY(!m_menu->menuPath().isEmpty());
}

void TestX11Tray::closeMenu()
{
    // How a panel tells that its menu closed.
    QDBusMessage call = QDBusMessage::createMethodCall(m_watcher->lastItemService(), m_menu->menuPath(),
        QStringLiteral("com.canonical.dbusmenu"), QStringLiteral("Event"));
    call << 0 << QStringLiteral("closed") << QVariant::fromValue(QDBusVariant(0)) << uint(0);
    m_bus->connection().call(call);
}

void TestX11Tray::menuListsTheControlsAndPerformsThem()
{
    const QJsonObject move = QVCorvaneProcess::control(31, rightArrow, controlAlt,
        { { QStringLiteral("Move Direction"), 5 }, { QStringLiteral("Move Delta"), 10 },
            { QStringLiteral("Accelerate"), true } });
    const QJsonObject click = QVCorvaneProcess::control(101, 45, 0x100000);
    startCorvane({ { QStringLiteral("Application Mode"), 1 }, { QStringLiteral("Stealth Mode"), true },
        { QStringLiteral("Custom Controls"),
            QJsonArray { heading(QStringLiteral("Pointer & Co")), move, separator(), click } } });

    QCOMPARE(menu().itemProperty(QStringLiteral("Title")).toString(), QStringLiteral("Corvane"));
    QVERIFY(iconPixmapCount(menu().itemProperty(QStringLiteral("IconPixmap"))) > 0); // the panel has a picture to show
    openMenu();
    const QString moveTitle = QStringLiteral("Move Right \u2014 10 px \u2027 Accelerate");
    QCOMPARE(menu().visibleLabels(),
        QStringList({ QStringLiteral("About Corvane"), QStringLiteral("Check for Updates"), QStringLiteral("Help"),
            QStringLiteral("-"), QStringLiteral("Pointer & Co"), moveTitle, QStringLiteral("-"),
            QStringLiteral("Click"), QStringLiteral("-"), QStringLiteral("Settings"), QStringLiteral("-"),
            QStringLiteral("Quit") }));
    const QList<QVTestDBusMenu::Item> items = menu().visibleItems();
    QVERIFY(!items.at(4).isEnabled()); // the heading is a line, not an action
    QVERIFY(items.at(5).hasIcon());
    QVERIFY(items.at(7).hasIcon());
    QCOMPARE(items.at(5).shortcut(), QStringLiteral("Control+Alt+Right"));
    QCOMPARE(items.at(7).shortcut(), QString()); // its key's label is longer than one character

    // A panel may ask again as it opens: the menu keeps its items, so the ids it holds stay good.
    QVERIFY(menu().aboutToShow());
    const QList<QVTestDBusMenu::Item> again = menu().visibleItems();
    QCOMPARE(again.size(), items.size());
    for (qsizetype index = 0; index < items.size(); ++index)
        QCOMPARE(again.at(index).id, items.at(index).id);

    m_server->run(
        QStringLiteral("xdotool"), { QStringLiteral("mousemove"), QStringLiteral("400"), QStringLiteral("300") });
    QVERIFY(menu().click(moveTitle));
    QTRY_COMPARE(pointerLocation(*m_server), QPoint(410, 300));
}

void TestX11Tray::controlAndAltOpenTheDebugLoggingSwitch()
{
    startCorvane({ { QStringLiteral("Application Mode"), 1 }, { QStringLiteral("Stealth Mode"), true } });
    m_server->run(
        QStringLiteral("xdotool"), { QStringLiteral("keydown"), QStringLiteral("Control_L"), QStringLiteral("Alt_L") });
    openMenu();
    QStringList labels = menu().visibleLabels();
    QVERIFY2(labels.contains(QStringLiteral("Enable Debug Logging")), qPrintable(labels.join(u'|')));
    QVERIFY(!labels.contains(QStringLiteral("Settings")));
    QVERIFY(menu().click(QStringLiteral("Enable Debug Logging")));
    m_server->run(
        QStringLiteral("xdotool"), { QStringLiteral("keyup"), QStringLiteral("Control_L"), QStringLiteral("Alt_L") });
    QTRY_VERIFY(QVCorvaneProcess::readSettings(m_settingsPath).value(QStringLiteral("QVDebugLog")).toBool());

    closeMenu();
    m_server->run(
        QStringLiteral("xdotool"), { QStringLiteral("keydown"), QStringLiteral("Control_L"), QStringLiteral("Alt_L") });
    openMenu();
    m_server->run(
        QStringLiteral("xdotool"), { QStringLiteral("keyup"), QStringLiteral("Control_L"), QStringLiteral("Alt_L") });
    const QList<QVTestDBusMenu::Item> items = menu().visibleItems();
    auto debugItem = std::find_if(items.begin(), items.end(),
        [](const QVTestDBusMenu::Item &item) { return item.label() == QLatin1String("Enable Debug Logging"); });
    QVERIFY(debugItem != items.end());
    QVERIFY(debugItem->isChecked());

    closeMenu();
    openMenu(); // no modifiers held: back to the plain menu
    labels = menu().visibleLabels();
    QVERIFY(labels.contains(QStringLiteral("Settings")));
    QVERIFY(!labels.contains(QStringLiteral("Enable Debug Logging")));
}

void TestX11Tray::menuFollowsTheSettingsAtEveryOpening()
{
    const QJsonObject move = QVCorvaneProcess::control(
        31, rightArrow, controlAlt, { { QStringLiteral("Move Direction"), 9 }, { QStringLiteral("Move Delta"), 3 } });
    QJsonObject settings { { QStringLiteral("Application Mode"), 1 }, { QStringLiteral("Stealth Mode"), true },
        { QStringLiteral("Custom Controls"), QJsonArray { move } } };
    startCorvane(settings);
    openMenu();
    QVERIFY(menu().visibleLabels().contains(QStringLiteral("Move Left \u2014 3 px")));
    closeMenu();

    settings.insert(QStringLiteral("Suppress Menu Item Suffixes"), true);
    settings.insert(
        QStringLiteral("Custom Controls"), QJsonArray { move, QVCorvaneProcess::control(21, 46, controlAlt) });
    QVCorvaneProcess::writeSettings(m_settingsPath, settings);
    QTRY_VERIFY_WITH_TIMEOUT(!m_corvane->logLines(QStringLiteral("custom controls reloaded")).isEmpty(), 5000);
    openMenu();
    const QStringList labels = menu().visibleLabels();
    QVERIFY2(labels.contains(QStringLiteral("Move Left")), qPrintable(labels.join(u'|')));
    QVERIFY(labels.contains(QStringLiteral("Center")));
}

void TestX11Tray::quitFromTheMenuSaves()
{
    const QJsonObject move = QVCorvaneProcess::control(31, rightArrow, controlAlt);
    startCorvane({ { QStringLiteral("Application Mode"), 1 }, { QStringLiteral("Stealth Mode"), true },
        { QStringLiteral("Custom Controls"), QJsonArray { move } } });
    openMenu();
    QVERIFY(menu().click(QStringLiteral("Quit")));
    QTRY_VERIFY_WITH_TIMEOUT(!m_corvane->isRunning(), 10000);
    QCOMPARE(
        QVCorvaneProcess::readSettings(m_settingsPath).value(QStringLiteral("Custom Controls")).toArray().size(), 1);
}

void TestX11Tray::xembedTrayShowsTheIconAndItsMenu()
{
    QProcess trayer;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), m_server->displayName());
    trayer.setProcessEnvironment(environment);
    trayer.start(QStringLiteral("trayer"),
        { QStringLiteral("--edge"), QStringLiteral("top"), QStringLiteral("--align"), QStringLiteral("right"),
            QStringLiteral("--widthtype"), QStringLiteral("pixel"), QStringLiteral("--width"), QStringLiteral("64"),
            QStringLiteral("--height"), QStringLiteral("24") });
    QVERIFY(trayer.waitForStarted());
    auto stopTrayer = qScopeGuard([&trayer] {
        ::kill(pid_t(trayer.processId()), SIGTERM);
        trayer.waitForFinished(5000);
    });
    QTest::qWait(500);

    startCorvane({ { QStringLiteral("Application Mode"), 1 }, { QStringLiteral("Stealth Mode"), true } }, false);
    // The embedded icon is a window of Corvane's inside the tray, near the right end of the top edge.
    QTRY_VERIFY_WITH_TIMEOUT(
        m_server->run(QStringLiteral("xwininfo"), { QStringLiteral("-root"), QStringLiteral("-tree") })
            .contains(QLatin1String("\"corvane\"")),
        10000);
    m_server->run(QStringLiteral("xdotool"),
        { QStringLiteral("mousemove"), QStringLiteral("1268"), QStringLiteral("12"), QStringLiteral("click"),
            QStringLiteral("3") });
    // The menu opens as a window of Corvane's on the root, below the tray.
    QTRY_VERIFY_WITH_TIMEOUT(
        m_server->run(QStringLiteral("xwininfo"), { QStringLiteral("-root"), QStringLiteral("-children") })
            .contains(QLatin1String("(\"corvane\" \"Corvane\")")),
        10000);
    m_server->run(QStringLiteral("import"),
        { QStringLiteral("-window"), QStringLiteral("root"),
            m_server->temporaryPath(QStringLiteral("xembed-menu.png")) });
}

QTEST_GUILESS_MAIN(TestX11Tray)
#include "tst_x11_tray.moc"
