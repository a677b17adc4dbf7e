#include "QVAboutDialog.h"
#include "QVPreferencesTestWindow.h"
#include "QVTestXServer.h"

#include <QApplication>
#include <QDir>
#include <QScreen>
#include <QTest>

// The settings window on a real X server: where it appears, that it takes the
// focus, and the toolbar under real mouse clicks. Each page's height and the
// Help item are checked offscreen.
class TestX11PreferencesWindow : public QObject
{
    Q_OBJECT

public:
    explicit TestX11PreferencesWindow(const QVTestXServer &server)
        : m_server(server)
    {
    }

private Q_SLOTS:
    void centeredAndActiveOnFirstShowing();
    void toolbarMenuChangesStyle();
    void aboutDialogIsOneWindow();
    void screenshots();

private:
    bool clickAt(const QPoint &globalPosition, int button = 1) const;
    bool clickOn(const QWidget &widget, int button = 1) const
    {
        return clickAt(widget.mapToGlobal(widget.rect().center()), button);
    }
    void showAndWait(QVPreferencesTestWindow &test, const QString &identifier) const;
    static void saveScreenshot(QWidget &widget, const QString &name)
    {
        QDir().mkpath(QStringLiteral(CORVANE_SCREENSHOT_DIR));
        widget.grab().save(QStringLiteral(CORVANE_SCREENSHOT_DIR "/x11-%1.png").arg(name));
    }

    const QVTestXServer &m_server;
};

bool TestX11PreferencesWindow::clickAt(const QPoint &globalPosition, int button) const
{
    return !m_server
                .run(QStringLiteral("xdotool"),
                    { QStringLiteral("mousemove"), QString::number(globalPosition.x()),
                        QString::number(globalPosition.y()), QStringLiteral("click"), QString::number(button) })
                .isNull();
}

void TestX11PreferencesWindow::showAndWait(QVPreferencesTestWindow &test, const QString &identifier) const
{
    test.window->showPreferencesTab(identifier);
    QVERIFY(QTest::qWaitForWindowExposed(test.window.get()));
    QTRY_VERIFY(test.window->isActiveWindow());
    QTRY_COMPARE(test.window->maximumHeight(), test.window->height());
}

void TestX11PreferencesWindow::centeredAndActiveOnFirstShowing()
{
    QVPreferencesTestWindow test;
    QVERIFY(!m_server
                 .run(QStringLiteral("xdotool"),
                     { QStringLiteral("mousemove"), QStringLiteral("30"), QStringLiteral("40") })
                 .isNull());
    showAndWait(test, QString());
    QCOMPARE(test.window->selectedIdentifier(), QStringLiteral("General"));
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const QPoint offset = test.window->frameGeometry().center() - screen.center();
    QVERIFY2(offset.manhattanLength() <= 2, qPrintable(QStringLiteral("%1,%2").arg(offset.x()).arg(offset.y())));
    QVERIFY(QApplication::activeWindow() == test.window.get());

    // Another page while visible, by a real click: the window stays where it is, its height fitted.
    test.window->move(40, 50);
    QTRY_COMPARE(test.window->pos(), QPoint(40, 50));
    QVERIFY(clickOn(*test.button(QStringLiteral("Actions"))));
    QTRY_COMPARE(test.window->selectedIdentifier(), QStringLiteral("Actions"));
    QTRY_COMPARE(test.window->maximumHeight(), test.window->height());
    QCOMPARE(lowestChildBottom(*test.actions, *test.window), test.window->height());
    QCOMPARE(test.window->pos(), QPoint(40, 50));
}

void TestX11PreferencesWindow::toolbarMenuChangesStyle()
{
    QVPreferencesTestWindow test;
    showAndWait(test, QStringLiteral("General"));
    const int toolbarHeight = test.toolbar()->height();
    QVERIFY(clickOn(*test.toolbar()->findChild<QWidget *>(QStringLiteral("flexibleSpace")), 3));
    QMenu *menu = test.styleMenu();
    QTRY_VERIFY(menu->isVisible());
    QAction *textOnly = menu->actions().at(2);
    QCOMPARE(textOnly->text(), QStringLiteral("Text Only"));
    QVERIFY(clickAt(menu->mapToGlobal(menu->actionGeometry(textOnly).center())));
    // What is stored and the fitted height are checked offscreen; here, that real clicks get there.
    QTRY_COMPARE(test.toolbar()->toolButtonStyle(), Qt::ToolButtonTextOnly);
    QTRY_VERIFY(test.toolbar()->height() < toolbarHeight);
    // A right click on a page brings no menu (no way to hide the toolbar).
    QVERIFY(clickOn(*test.general, 3));
    QTest::qWait(200);
    QCOMPARE(QApplication::activePopupWidget(), nullptr);
}

void TestX11PreferencesWindow::aboutDialogIsOneWindow()
{
    QVAboutDialog about;
    about.showAbout();
    QVERIFY(QTest::qWaitForWindowExposed(&about));
    QTRY_VERIFY(about.isActiveWindow());
    QVPreferencesTestWindow test;
    showAndWait(test, QString());
    about.showAbout();
    QTRY_VERIFY(about.isActiveWindow());
    QCOMPARE(QApplication::topLevelWidgets().count(&about), 1);
    auto *link = about.findChild<QLabel *>(QStringLiteral("linkView"));
    QVERIFY(link->openExternalLinks());
    QVERIFY(link->text().contains(QStringLiteral("https://corvane.org/")));
    QCOMPARE(widgetsWithoutAccessibleName(about), QStringList());
}

void TestX11PreferencesWindow::screenshots()
{
    // Icons as a desktop with an icon theme would show them.
    const QString themeName = QIcon::themeName();
    QIcon::setThemeName(QStringLiteral("Adwaita"));
    QVPreferencesTestWindow test;
    test.general->setExplanationVisible(true);
    for (const QString &identifier :
        { QStringLiteral("General"), QStringLiteral("Actions"), QStringLiteral("Updates") }) {
        showAndWait(test, identifier);
        saveScreenshot(*test.window, identifier);
    }
    QVAboutDialog about;
    about.showAbout();
    QVERIFY(QTest::qWaitForWindowExposed(&about));
    saveScreenshot(about, QStringLiteral("About"));
    QIcon::setThemeName(themeName);
}

int main(int argc, char *argv[])
{
    const std::unique_ptr<QVTestXServer> server = QVTestXServer::startXvfbForThisProcess(1280, 800);
    if (!server)
        return 1;
    QApplication application(argc, argv);
    application.setApplicationVersion(QStringLiteral("0.1.0"));
    TestX11PreferencesWindow test(*server);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_x11_preferenceswindow.moc"
