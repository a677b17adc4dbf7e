#include "QVPreferencesTestWindow.h"
#include "QVWindowExtensions.h"

#include <QAbstractAnimation>
#include <QApplication>
#include <QComboBox>
#include <QJsonObject>
#include <QMenu>
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
    void heightDifference_data();
    void heightDifference();
    void frameKeepsTopEdge();
    void layoutManagedPage_data();
    void layoutManagedPage();
    void animationEndsAtFittedHeight();
    void newAnimationReplacesRunningOne();

    void firstShowingIsGeneral();
    void toolbarClickFitsPage_data();
    void toolbarClickFitsPage();
    void reopeningKeepsLastPage();
    void helpIsNeverSelected();
    void unknownIdentifierKeepsPage();
    void toolbarStyleIsStored_data();
    void toolbarStyleIsStored();
    void noUpdatesItemWithoutPage();
    void actionsListKeepsScrollPosition();
    void everyWidgetHasAccessibleName();

    void modeSelectorReportsUserChanges_data();
    void modeSelectorReportsUserChanges();
    void checkBoxesReportUserChanges();
    void explanationChangesFittedHeight();
    void screenshots();
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

void TestPreferencesWindow::heightDifference_data()
{
    QTest::addColumn<int>("margin");
    QTest::addColumn<QString>("below"); // what else lies below the lower child
    QTest::addColumn<int>("difference");

    QTest::newRow("fits exactly") << 50 << QString() << 0;
    QTest::newRow("one pixel short") << 51 << QString() << 1;
    QTest::newRow("too tall") << 20 << QString() << -30;
    QTest::newRow("hidden child ignored") << 50 << QStringLiteral("hidden") << 0;
    QTest::newRow("empty label ignored") << 50 << QStringLiteral("empty label") << 0;
    QTest::newRow("label with text counts") << 50 << QStringLiteral("label") << 40;
}

void TestPreferencesWindow::heightDifference()
{
    QFETCH(int, margin);
    QFETCH(QString, below);
    QFETCH(int, difference);

    PlainWindow plain;
    QWidget *extra = nullptr;
    if (below == QLatin1String("hidden")) {
        extra = new QWidget(&plain.view);
        extra->hide();
    } else if (below.endsWith(QLatin1String("label"))) {
        extra = new QLabel(below == QLatin1String("label") ? QStringLiteral("text") : QString(), &plain.view);
    }
    if (extra)
        extra->setGeometry(10, 110, 100, 30); // bottom edge at 140
    const QRect before = plain.window.geometry();

    QCOMPARE(heightDifferenceNecessaryToFitSubviews(plain.view, margin, &plain.window), difference);
    QCOMPARE(frameByAdjustingHeightToFitSubviewsOfView(plain.window, plain.view, margin).height(),
        before.height() + difference);
    QCOMPARE(adjustHeightToFitSubviewsOfView(plain.window, plain.view, margin, true), nullptr);
    QCOMPARE(plain.window.geometry().height(), before.height() + difference);
}

void TestPreferencesWindow::frameKeepsTopEdge()
{
    PlainWindow plain;
    // The view sits lower in the window than its own origin: the window's bottom counts.
    plain.view.setGeometry(0, 40, 300, 110);
    const QRect frame = frameByAdjustingHeightToFitSubviewsOfView(plain.window, plain.view, 20);
    QCOMPARE(frame.top(), 200);
    QCOMPARE(frame.left(), 100);
    QCOMPARE(frame.width(), 300);
    QCOMPARE(frame.height(), 40 + 100 + 20);
    QCOMPARE(heightDifferenceNecessaryToFitSubviews(plain.view, 20, nullptr), 100 + 20 - 110);
}

void TestPreferencesWindow::layoutManagedPage_data()
{
    QTest::addColumn<bool>("wrappedText");
    QTest::addColumn<int>("startHeight");

    QTest::newRow("grows") << false << 60;
    QTest::newRow("shrinks") << false << 700;
    QTest::newRow("wrapped text grows") << true << 60;
    QTest::newRow("wrapped text shrinks") << true << 700;
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
    QCOMPARE(heightDifferenceNecessaryToFitSubviews(*page, 20, &window), 0);
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
    QTest::qWait(300);
    QCOMPARE(plain.window.height(), 190);
}

void TestPreferencesWindow::firstShowingIsGeneral()
{
    QVPreferencesTestWindow test;
    QVERIFY(test.window->isFirstShowing());
    test.window->showPreferencesTab(QString());
    QCOMPARE(test.window->selectedIdentifier(), QStringLiteral("General"));
    QVERIFY(test.window->toolbarItem(QStringLiteral("General"))->isChecked());
    QVERIFY(!test.window->isFirstShowing());
    QVERIFY(test.window->isVisible());
    QCOMPARE(test.window->windowTitle(), QStringLiteral("Corvane"));
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
    QVERIFY(test.window->toolbarItem(identifier)->isChecked());
    auto *pages = test.window->findChild<QStackedWidget *>();
    QWidget *page = pages->currentWidget();
    waitUntilSettled(*test.window);
    QCOMPARE(lowestChildBottom(*page, *test.window) + margin, test.window->height());
    QVERIFY(test.window->height() != before);
    QCOMPARE(test.window->minimumHeight(), test.window->height());
    if (identifier == QLatin1String("Actions"))
        QCOMPARE(test.actions->collectionView()->height(), test.actions->sizeHint().height());
}

void TestPreferencesWindow::reopeningKeepsLastPage()
{
    QVPreferencesTestWindow test;
    test.window->showPreferencesTab(QStringLiteral("Actions"));
    test.window->close();
    QVERIFY(!test.window->isVisible());
    test.window->showPreferencesTab(QString());
    QCOMPARE(test.window->selectedIdentifier(), QStringLiteral("Actions"));
    QVERIFY(test.window->isVisible());
}

void TestPreferencesWindow::helpIsNeverSelected()
{
    QVPreferencesTestWindow test;
    test.window->showPreferencesTab(QStringLiteral("Updates"));
    QSignalSpy help(test.window.get(), &QVPreferencesWindow::helpRequested);
    QTest::mouseClick(test.button(QStringLiteral("Help")), Qt::LeftButton);
    QCOMPARE(help.count(), 1);
    QCOMPARE(test.window->selectedIdentifier(), QStringLiteral("Updates"));
    QVERIFY(!test.window->toolbarItem(QStringLiteral("Help"))->isChecked());
    QVERIFY(test.window->toolbarItem(QStringLiteral("Updates"))->isChecked());
    test.window->showPreferencesTab(QStringLiteral("Help"));
    QCOMPARE(test.window->selectedIdentifier(), QStringLiteral("Updates"));
}

void TestPreferencesWindow::unknownIdentifierKeepsPage()
{
    QVPreferencesTestWindow test;
    test.window->showPreferencesTab(QStringLiteral("Updates"));
    test.window->close();
    test.window->showPreferencesTab(QStringLiteral("Shortcuts"));
    QCOMPARE(test.window->selectedIdentifier(), QStringLiteral("Updates"));
    QVERIFY(test.window->toolbarItem(QStringLiteral("Updates"))->isChecked());
    QVERIFY(test.window->isVisible());
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
    const QString key = QVPreferencesWindow::toolbarIdentifier();
    QCOMPARE(key, QStringLiteral("Preferences (Independent) 0.1"));
    QCOMPARE(int(test.window->toolbar()->toolButtonStyle()), int(Qt::ToolButtonTextUnderIcon));
    // A configuration the window does not know of survives.
    test.defaults.setObject(QJsonObject { { QStringLiteral("Other"), true } }, key);
    test.window->showPreferencesTab(QString());

    Q_EMIT test.window->toolbar()->customContextMenuRequested(QPoint(5, 5));
    QMenu *menu = test.window->toolbarStyleMenu();
    QTRY_VERIFY(menu->isVisible());
    QAction *choice = nullptr;
    for (QAction *item : menu->actions())
        choice = item->text() == title ? item : choice;
    QVERIFY(choice);
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(choice).center());
    QCOMPARE(int(test.window->toolbar()->toolButtonStyle()), style);
    const QJsonObject configuration = test.defaults.objectForKey(key).toObject();
    QCOMPARE(configuration.value(QStringLiteral("Display Mode")).toInt(), stored);
    QCOMPARE(configuration.value(QStringLiteral("Other")).toBool(), true);
    // The toolbar's height changed with its style: the page still fits.
    QWidget *page = test.window->findChild<QStackedWidget *>()->currentWidget();
    waitUntilSettled(*test.window);
    QCOMPARE(lowestChildBottom(*page, *test.window) + 20, test.window->height());

    QVPreferencesTestWindow reopened(true, test.defaults.filePath());
    QCOMPARE(int(reopened.window->toolbar()->toolButtonStyle()), style);
    for (QAction *item : reopened.window->toolbarStyleMenu()->actions())
        QCOMPARE(item->isChecked(), item->text() == title);
}

void TestPreferencesWindow::noUpdatesItemWithoutPage()
{
    QVPreferencesTestWindow test(false);
    QCOMPARE(test.window->toolbarItem(QStringLiteral("Updates")), nullptr);
    QStringList titles;
    for (QAction *item : test.window->toolbar()->actions())
        titles.append(item->text());
    QCOMPARE(titles,
        (QStringList { QStringLiteral("General"), QStringLiteral("Actions"), QString(), QStringLiteral("Help") }));
    test.window->showPreferencesTab(QStringLiteral("Updates"));
    QCOMPARE(test.window->selectedIdentifier(), QStringLiteral("General"));
}

void TestPreferencesWindow::actionsListKeepsScrollPosition()
{
    QVPreferencesTestWindow test;
    auto *tall = new QWidget;
    tall->setMinimumHeight(3000);
    test.actions->contentView()->layout()->addWidget(tall);
    test.window->showPreferencesTab(QStringLiteral("Actions"));
    QVERIFY(QTest::qWaitForWindowExposed(test.window.get()));
    QScrollBar *scrollBar = test.actions->collectionView()->verticalScrollBar();
    QVERIFY(scrollBar->maximum() > 1000);
    scrollBar->setValue(1000);

    test.window->showPreferencesTab(QStringLiteral("General"));
    waitUntilSettled(*test.window);
    test.window->showPreferencesTab(QStringLiteral("Actions"));
    waitUntilSettled(*test.window);
    QCOMPARE(scrollBar->value(), 1000);
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

void TestPreferencesWindow::modeSelectorReportsUserChanges_data()
{
    QTest::addColumn<qint64>("start");
    QTest::addColumn<int>("key");
    QTest::addColumn<qint64>("selected");

    QTest::newRow("0 to 1") << qint64(0) << int(Qt::Key_Down) << qint64(1);
    QTest::newRow("2 to 1") << qint64(2) << int(Qt::Key_Up) << qint64(1);
    QTest::newRow("0 stays") << qint64(0) << int(Qt::Key_Up) << qint64(0);
    QTest::newRow("2 stays") << qint64(2) << int(Qt::Key_Down) << qint64(2);
}

void TestPreferencesWindow::modeSelectorReportsUserChanges()
{
    QFETCH(qint64, start);
    QFETCH(int, key);
    QFETCH(qint64, selected);

    QVGeneralPreferencesPage page;
    QSignalSpy changes(&page, &QVGeneralPreferencesPage::changeSetting);
    page.setApplicationMode(start);
    QComboBox *selector = page.applicationModeSelector();
    QCOMPARE(selector->currentData().toLongLong(), start);
    QCOMPARE(changes.count(), 0);

    QTest::keyClick(selector, Qt::Key(key));
    QCOMPARE(selector->currentData().toLongLong(), selected);
    QCOMPARE(changes.count(), selected == start ? 0 : 1);
    if (!changes.isEmpty())
        QCOMPARE(changes.first().first().value<QObject *>(), selector);
    // Choosing the item already chosen through the list is no change either.
    Q_EMIT selector->activated(selector->currentIndex());
    QCOMPARE(changes.count(), selected == start ? 0 : 1);
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
    QLabel *explanation = test.general->facelessAplicationModeExplanationView();
    QCOMPARE(
        explanation->mapTo(test.window.get(), QPoint(0, 0)).y() > test.general->applicationModeSelector()->y(), true);
    QCOMPARE(lowestChildBottom(*test.general, *test.window) + 20, test.window->height());
}

void TestPreferencesWindow::screenshots()
{
    QVPreferencesTestWindow test;
    test.general->setExplanationVisible(true);
    for (const QString &identifier :
        { QStringLiteral("General"), QStringLiteral("Actions"), QStringLiteral("Updates") }) {
        test.window->showPreferencesTab(identifier);
        waitUntilSettled(*test.window);
        saveScreenshot(*test.window, QStringLiteral("offscreen-") + identifier);
    }
}

QTEST_MAIN(TestPreferencesWindow)
#include "tst_preferenceswindow.moc"
