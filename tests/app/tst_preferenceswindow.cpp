#include "QVCustomControlEditor.h"
#include "QVPreferencesTestWindow.h"
#include "QVWindowExtensions.h"

#include <QAbstractAnimation>
#include <QComboBox>
#include <QJsonObject>
#include <QPropertyAnimation>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTest>

// The settings window, its pages and the height fitting, on Qt's offscreen platform.
class TestPreferencesWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fittedHeight_data();
    void fittedHeight();
    void layoutManagedPage_data();
    void layoutManagedPage();
    void animationEndsAtFittedHeight();
    void newAnimationReplacesRunningOne();

    void pageOnShowing();
    void toolbarClickFitsPage_data();
    void toolbarClickFitsPage();
    void helpIsNeverSelected();
    void toolbarStyleIsStored_data();
    void toolbarStyleIsStored();
    void noUpdatesItemWithoutPage();
    void actionsListKeepsScrollPosition();
    void everyWidgetHasAccessibleName();

    void modeSelectorReportsUserChanges();
    void checkBoxesReportUserChanges();
    void explanationChangesFittedHeight();
};

namespace
{

// A window whose content is one view with two children at fixed places, no layout.
struct PlainWindow {
    PlainWindow()
    {
        window.setGeometry(100, 200, 300, 150);
        view.setGeometry(0, 0, 300, 150);
        upper.setGeometry(10, 10, 100, 30);
        lower.setGeometry(10, 60, 100, 40); // bottom edge at 100
    }
    QWidget window;
    QWidget view { &window };
    QWidget upper { &view };
    QWidget lower { &view };
};

// The height animation is over once the window holds its height again.
void waitUntilSettled(const QWidget &window)
{
    QTRY_COMPARE(window.maximumHeight(), window.height());
}

} // namespace

void TestPreferencesWindow::fittedHeight_data()
{
    QTest::addColumn<int>("margin");
    QTest::addColumn<QString>("below"); // what else lies below the lower child
    QTest::addColumn<int>("viewTop");
    QTest::addColumn<int>("height");

    QTest::newRow("fits exactly") << 50 << QString() << 0 << 150;
    QTest::newRow("one pixel short") << 51 << QString() << 0 << 151;
    QTest::newRow("too tall") << 20 << QString() << 0 << 120;
    QTest::newRow("view lower in the window") << 20 << QString() << 40 << 160;
    QTest::newRow("hidden child ignored") << 50 << QStringLiteral("hidden") << 0 << 150;
    QTest::newRow("empty label ignored") << 50 << QStringLiteral("empty label") << 0 << 150;
    QTest::newRow("label with text counts") << 50 << QStringLiteral("label") << 0 << 190;
}

void TestPreferencesWindow::fittedHeight()
{
    QFETCH(int, margin);
    QFETCH(QString, below);
    QFETCH(int, viewTop);
    QFETCH(int, height);

    PlainWindow plain;
    plain.view.move(0, viewTop);
    QWidget *extra = nullptr;
    if (below == QLatin1String("hidden")) {
        extra = new QWidget(&plain.view);
        extra->hide();
    } else if (below.endsWith(QLatin1String("label"))) {
        extra = new QLabel(below == QLatin1String("label") ? QStringLiteral("text") : QString(), &plain.view);
    }
    if (extra)
        extra->setGeometry(10, 110, 100, 30); // bottom edge at 140

    // Not shown: set at once, the top edge kept.
    QCOMPARE(adjustHeightToFitSubviewsOfView(plain.window, plain.view, margin, true), nullptr);
    QCOMPARE(plain.window.geometry(), QRect(100, 200, 300, height));
}

void TestPreferencesWindow::layoutManagedPage_data()
{
    QTest::addColumn<bool>("wrappedText");
    QTest::addColumn<int>("startHeight");

    QTest::newRow("grows") << false << 60;
    QTest::newRow("shrinks") << false << 700;
    QTest::newRow("wrapped text grows") << true << 60;
}

void TestPreferencesWindow::layoutManagedPage()
{
    QFETCH(bool, wrappedText);
    QFETCH(int, startHeight);

    // Laid out but never shown: the children have not been placed yet.
    QWidget window;
    auto *windowLayout = new QVBoxLayout(&window);
    windowLayout->setContentsMargins(0, 30, 0, 0);
    auto *page = new QWidget;
    windowLayout->addWidget(page);
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(20, 20, 20, 0);
    for (int row = 0; row < 4; ++row)
        layout->addWidget(new QCheckBox(QStringLiteral("Option %1").arg(row), page));
    QLabel *last = new QLabel(page);
    if (wrappedText) {
        last->setWordWrap(true);
        last->setText(QString(QStringLiteral("Several words that need more than one line. ")).repeated(8));
    } else {
        last->setText(QStringLiteral("Last"));
    }
    layout->addWidget(last);
    layout->addStretch(1);
    window.setMinimumHeight(1);
    window.setGeometry(50, 80, 320, startHeight);

    QCOMPARE(adjustHeightToFitSubviewsOfView(window, *page, 20, true), nullptr);
    QCOMPARE(window.geometry().top(), 80);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(last->mapTo(&window, QPoint(0, last->height())).y() + 20, window.height());
    if (wrappedText)
        QVERIFY(last->height() > 2 * last->fontMetrics().height());
}

void TestPreferencesWindow::animationEndsAtFittedHeight()
{
    PlainWindow plain;
    plain.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&plain.window));
    const int top = plain.window.y();
    QPropertyAnimation *animation = adjustHeightToFitSubviewsOfView(plain.window, plain.view, 80, true);
    QVERIFY(animation);
    QCOMPARE(animation->state(), QAbstractAnimation::Running);
    QTRY_COMPARE(plain.window.height(), 180);
    QCOMPARE(plain.window.y(), top);
    QCOMPARE(adjustHeightToFitSubviewsOfView(plain.window, plain.view, 80, true), nullptr);
}

void TestPreferencesWindow::newAnimationReplacesRunningOne()
{
    PlainWindow plain;
    plain.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&plain.window));
    QPointer<QPropertyAnimation> first = adjustHeightToFitSubviewsOfView(plain.window, plain.view, 300, true);
    QVERIFY(first);
    // Back to the height the window has now, while the first animation still runs.
    QCOMPARE(adjustHeightToFitSubviewsOfView(plain.window, plain.view, 50, true), nullptr);
    QTRY_VERIFY(!first);
    QCOMPARE(plain.window.height(), 150);
    QPointer<QPropertyAnimation> second = adjustHeightToFitSubviewsOfView(plain.window, plain.view, 10, true);
    QPointer<QPropertyAnimation> third = adjustHeightToFitSubviewsOfView(plain.window, plain.view, 90, true);
    QVERIFY(third);
    QTRY_VERIFY(!second);
    QTRY_COMPARE(plain.window.height(), 190);
}

void TestPreferencesWindow::pageOnShowing()
{
    QVPreferencesTestWindow test;
    test.window->showPreferencesTab(QString());
    QCOMPARE(test.window->selectedIdentifier(), QStringLiteral("General"));
    QVERIFY(test.item(QStringLiteral("General"))->isChecked());
    QVERIFY(test.window->isVisible());
    QCOMPARE(test.window->windowTitle(), QStringLiteral("Corvane"));

    // Reopened: the last page, whether asked for none or for one it does not have.
    test.window->showPreferencesTab(QStringLiteral("Actions"));
    for (const QString &identifier : { QString(), QStringLiteral("Shortcuts"), QStringLiteral("Help") }) {
        test.window->close();
        test.window->showPreferencesTab(identifier);
        QCOMPARE(test.window->selectedIdentifier(), QStringLiteral("Actions"));
        QVERIFY(test.item(QStringLiteral("Actions"))->isChecked());
        QVERIFY(test.window->isVisible());
    }
}

void TestPreferencesWindow::toolbarClickFitsPage_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<int>("margin");

    QTest::newRow("Actions") << QStringLiteral("Actions") << 0;
    QTest::newRow("Updates") << QStringLiteral("Updates") << 20;
    QTest::newRow("General") << QStringLiteral("General") << 20;
}

void TestPreferencesWindow::toolbarClickFitsPage()
{
    QFETCH(QString, identifier);
    QFETCH(int, margin);

    QVPreferencesTestWindow test;
    // Start from another page so that every row changes the height.
    test.window->showPreferencesTab(
        identifier == QLatin1String("Actions") ? QStringLiteral("Updates") : QStringLiteral("Actions"));
    QVERIFY(QTest::qWaitForWindowExposed(test.window.get()));
    const int before = test.window->height();
    QTest::mouseClick(test.button(identifier), Qt::LeftButton);
    QCOMPARE(test.window->selectedIdentifier(), identifier);
    QVERIFY(test.item(identifier)->isChecked());
    auto *pages = test.window->findChild<QStackedWidget *>();
    QWidget *page = pages->currentWidget();
    waitUntilSettled(*test.window);
    QCOMPARE(lowestChildBottom(*page, *test.window) + margin, test.window->height());
    QVERIFY(test.window->height() != before);
    QCOMPARE(test.window->minimumHeight(), test.window->height());
    if (identifier == QLatin1String("Actions")) // an empty list: the smallest container
        QCOMPARE(test.actions->findChild<QWidget *>(QStringLiteral("resizableContainerView"))->height(), 102);
}

void TestPreferencesWindow::helpIsNeverSelected()
{
    QVPreferencesTestWindow test;
    test.window->showPreferencesTab(QStringLiteral("Updates"));
    QSignalSpy help(test.window.get(), &QVPreferencesWindow::helpRequested);
    QTest::mouseClick(test.button(QStringLiteral("Help")), Qt::LeftButton);
    QCOMPARE(help.count(), 1);
    QCOMPARE(test.window->selectedIdentifier(), QStringLiteral("Updates"));
    QVERIFY(!test.item(QStringLiteral("Help"))->isChecked());
    QVERIFY(test.item(QStringLiteral("Updates"))->isChecked());
}

void TestPreferencesWindow::toolbarStyleIsStored_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<int>("stored");
    QTest::addColumn<int>("style");

    QTest::newRow("text only") << QStringLiteral("Text Only") << 3 << int(Qt::ToolButtonTextOnly);
    QTest::newRow("icon only") << QStringLiteral("Icon Only") << 2 << int(Qt::ToolButtonIconOnly);
    QTest::newRow("icon and text") << QStringLiteral("Icon and Text") << 1 << int(Qt::ToolButtonTextUnderIcon);
}

void TestPreferencesWindow::toolbarStyleIsStored()
{
    QFETCH(QString, title);
    QFETCH(int, stored);
    QFETCH(int, style);

    QVPreferencesTestWindow test;
    const QString key = QStringLiteral("Preferences (Independent) 0.1");
    QCOMPARE(int(test.toolbar()->toolButtonStyle()), int(Qt::ToolButtonTextUnderIcon));
    // A configuration the window does not know of survives.
    test.defaults.setObject(QJsonObject { { QStringLiteral("Other"), true } }, key);
    test.window->showPreferencesTab(QString());

    Q_EMIT test.toolbar()->customContextMenuRequested(QPoint(5, 5));
    QMenu *menu = test.styleMenu();
    QTRY_VERIFY(menu->isVisible());
    QAction *choice = nullptr;
    for (QAction *item : menu->actions())
        choice = item->text() == title ? item : choice;
    QVERIFY(choice);
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(choice).center());
    QCOMPARE(int(test.toolbar()->toolButtonStyle()), style);
    const QJsonObject configuration = test.defaults.objectForKey(key).toObject();
    QCOMPARE(configuration.value(QStringLiteral("Display Mode")).toInt(), stored);
    QCOMPARE(configuration.value(QStringLiteral("Other")).toBool(), true);
    // The toolbar's height changed with its style: the page still fits.
    QWidget *page = test.window->findChild<QStackedWidget *>()->currentWidget();
    waitUntilSettled(*test.window);
    QCOMPARE(lowestChildBottom(*page, *test.window) + 20, test.window->height());

    QVPreferencesTestWindow reopened(true, test.defaults.filePath());
    QCOMPARE(int(reopened.toolbar()->toolButtonStyle()), style);
    for (QAction *item : reopened.styleMenu()->actions())
        QCOMPARE(item->isChecked(), item->text() == title);
}

void TestPreferencesWindow::noUpdatesItemWithoutPage()
{
    QVPreferencesTestWindow test(false);
    QCOMPARE(test.item(QStringLiteral("Updates")), nullptr);
    QStringList titles;
    for (QAction *item : test.toolbar()->actions())
        titles.append(item->text());
    QCOMPARE(titles,
        (QStringList { QStringLiteral("General"), QStringLiteral("Actions"), QString(), QStringLiteral("Help") }));
    test.window->showPreferencesTab(QStringLiteral("Updates"));
    QCOMPARE(test.window->selectedIdentifier(), QStringLiteral("General"));
}

void TestPreferencesWindow::actionsListKeepsScrollPosition()
{
    QVPreferencesTestWindow test;
    for (int count = 0; count < 40; ++count)
        test.actions->editor().addControl();
    test.window->showPreferencesTab(QStringLiteral("Actions"));
    QVERIFY(QTest::qWaitForWindowExposed(test.window.get()));
    QScrollBar *scrollBar = test.actions->findChild<QScrollArea *>()->verticalScrollBar();
    QVERIFY(scrollBar->maximum() > 1000);
    // At the end of the list, where a list left taller for a moment would lose the place.
    scrollBar->setValue(scrollBar->maximum());
    const int end = scrollBar->value();

    test.window->showPreferencesTab(QStringLiteral("General"));
    waitUntilSettled(*test.window);
    test.window->showPreferencesTab(QStringLiteral("Actions"));
    waitUntilSettled(*test.window);
    QCOMPARE(scrollBar->value(), end);
}

void TestPreferencesWindow::everyWidgetHasAccessibleName()
{
    QVPreferencesTestWindow test;
    test.general->setExplanationVisible(true);
    for (const QString &identifier : { QStringLiteral("General"), QStringLiteral("Actions") }) {
        test.window->showPreferencesTab(identifier);
        QVERIFY(QTest::qWaitForWindowExposed(test.window.get()));
        QCOMPARE(widgetsWithoutAccessibleName(*test.window), QStringList());
    }
}

void TestPreferencesWindow::modeSelectorReportsUserChanges()
{
    QVGeneralPreferencesPage page;
    QSignalSpy changes(&page, &QVGeneralPreferencesPage::changeSetting);
    QComboBox *selector = page.applicationModeSelector();
    page.setApplicationMode(2);
    QCOMPARE(selector->currentData().toLongLong(), qint64(2));
    // The controller's own setting is no change, nor is choosing it again from the list.
    Q_EMIT selector->activated(selector->currentIndex());
    QCOMPARE(changes.count(), 0);

    QTest::keyClick(selector, Qt::Key_Up);
    QCOMPARE(selector->currentData().toLongLong(), qint64(1));
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.first().first().value<QObject *>(), selector);
    Q_EMIT selector->activated(selector->currentIndex());
    QCOMPARE(changes.count(), 1);
}

void TestPreferencesWindow::checkBoxesReportUserChanges()
{
    QVGeneralPreferencesPage page;
    QSignalSpy changes(&page, &QVGeneralPreferencesPage::changeSetting);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    for (QCheckBox *box : { page.loginItemSwitch(), page.stealthModeSwitch() }) {
        box->setChecked(true); // the controller's own setting: no report
        QCOMPARE(changes.count(), 0);
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(box->height() / 2, box->height() / 2));
        QCOMPARE(box->isChecked(), false);
        QCOMPARE(changes.count(), 1);
        QCOMPARE(changes.takeFirst().first().value<QObject *>(), box);
    }
}

void TestPreferencesWindow::explanationChangesFittedHeight()
{
    QVPreferencesTestWindow test;
    test.window->showPreferencesTab(QStringLiteral("General"));
    QVERIFY(QTest::qWaitForWindowExposed(test.window.get()));
    const int without = test.window->height();
    test.general->setExplanationVisible(true);
    test.window->updatePreferencesWindowFrame();
    waitUntilSettled(*test.window);
    QVERIFY(test.window->height() > without + test.general->fontMetrics().height());
    auto *explanation = test.general->findChild<QLabel *>(QStringLiteral("facelessAplicationModeExplanationView"));
    QCOMPARE(
        explanation->mapTo(test.window.get(), QPoint(0, 0)).y() > test.general->applicationModeSelector()->y(), true);
    QCOMPARE(lowestChildBottom(*test.general, *test.window) + 20, test.window->height());
}

QTEST_MAIN(TestPreferencesWindow)
#include "tst_preferenceswindow.moc"
