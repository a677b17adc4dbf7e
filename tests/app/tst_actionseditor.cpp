#include "QVCustomControlCollectionView.h"
#include "QVCustomControlConfigurationView.h"
#include "QVCustomControlDirectionSelectorView.h"
#include "QVCustomControlEditor.h"
#include "QVEditorTestControls.h"
#include "QVEvent.h"
#include "QVHotKeyClearButton.h"
#include "QVHotKeyTextView.h"
#include "QVPreferencesTestWindow.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

// The editor of the custom controls in the settings window, driven with mouse and
// key events as a person drives it: selection, adding, deleting, collapsing and
// dragging rows, and the heights of the list and the window.
class TestActionsEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void containerFollowsList_data();
    void containerFollowsList();
    void clicksSelect_data();
    void clicksSelect();
    void keysSelectAndDelete();
    void addGoesBelowSelection_data();
    void addGoesBelowSelection();
    void expandSwitchCollapses();
    void headingLosesHotKey();
    void dragReorders_data();
    void dragReorders();
    void dragScrollsAndKeyCancels();
    void editsAreReported();
    void refusalIsShownUnderTheList();
    void everyPartIsNamed();
    void commandWhereKeysAreNotGranted();
    void screenshots();

private:
    struct Editor : QVPreferencesTestWindow {
        explicit Editor(int moves = 0, const QJsonArray &stored = {});
        QVCustomControlCollectionView *list() const { return actions->collectionView(); }
        QList<QVCustomControlConfigurationView *> rows() const { return list()->configurationViews(); }
        QVCustomControlConfigurationView *row(int index) const { return rows().at(index); }
        QList<int> selection() const;
        void select(const QList<int> &indexes) const;
        // The list's order as the indexes the controls had at the start.
        QList<int> order() const;
        QWidget *container() const { return actions->findChild<QWidget *>(QStringLiteral("resizableContainerView")); }
        QScrollBar *scrollBar() const { return actions->findChild<QScrollArea *>()->verticalScrollBar(); }
        QWindow *handle() const { return window->windowHandle(); }
        // A point on a row where no control lies: the header band between the pop-up and the field.
        QPoint inWindow(const QVCustomControlConfigurationView *target, int y = 8) const
        {
            return target->mapTo(window.get(), QPoint(target->width() / 2, y));
        }
        void click(int index, Qt::KeyboardModifiers modifiers = {}) const
        {
            list()->scrollRectToVisible(row(index)->geometry());
            QTest::mouseClick(handle(), Qt::LeftButton, modifiers, inWindow(row(index)));
        }
        QStringList initialIdentifiers;
    };
    static void saveScreenshot(QWidget &widget, const QString &name)
    {
        QDir().mkpath(QStringLiteral(CORVANE_SCREENSHOT_DIR));
        widget.grab().save(QStringLiteral(CORVANE_SCREENSHOT_DIR "/editor-%1.png").arg(name));
    }
};

TestActionsEditor::Editor::Editor(int moves, const QJsonArray &stored)
{
    if (!stored.isEmpty()) {
        defaults.setObject(stored, QStringLiteral("Custom Controls"));
        manager.loadControls();
        actions->editor().reloadRows();
    }
    for (int count = 0; count < moves; ++count)
        actions->editor().addControl();
    for (const QVCustomControlRef &control : manager.controls())
        initialIdentifiers.append(control->uniqueIdentifier());
    list()->selectConfigurationView(nullptr, {});
    window->showPreferencesTab(QStringLiteral("Actions"));
    if (QTest::qWaitForWindowExposed(window.get()))
        QTRY_COMPARE(window->maximumHeight(), window->height());
}

QList<int> TestActionsEditor::Editor::selection() const
{
    QList<int> indexes;
    const QList<QVCustomControlConfigurationView *> all = rows();
    for (int index = 0; index < all.size(); ++index)
        if (all[index]->selected())
            indexes.append(index);
    return indexes;
}

void TestActionsEditor::Editor::select(const QList<int> &indexes) const
{
    list()->selectConfigurationView(nullptr, {});
    for (const int index : indexes)
        list()->selectConfigurationView(row(index), Qt::ControlModifier);
}

QList<int> TestActionsEditor::Editor::order() const
{
    QList<int> indexes;
    for (const QVCustomControlRef &control : manager.controls())
        indexes.append(int(initialIdentifiers.indexOf(control->uniqueIdentifier())));
    return indexes;
}

void TestActionsEditor::containerFollowsList_data()
{
    QTest::addColumn<QJsonArray>("stored");
    QTest::addColumn<int>("containerHeight");
    QTest::addColumn<bool>("scrolls");
    const QJsonObject collapsed { { QStringLiteral("Action"), 101 }, { QStringLiteral("Collapsed"), true } };
    QJsonArray many;
    for (int count = 0; count < 30; ++count)
        many.append(QJsonObject { { QStringLiteral("Action"), 31 } });
    QTest::newRow("empty") << QJsonArray() << 102 << false;
    QTest::newRow("one collapsed row") << QJsonArray { collapsed } << 102 << false;
    QTest::newRow("many rows") << many << 550 << true;
}

void TestActionsEditor::containerFollowsList()
{
    QFETCH(QJsonArray, stored);
    QFETCH(int, containerHeight);
    QFETCH(bool, scrolls);
    Editor editor(0, stored);
    QCOMPARE(editor.container()->height(), containerHeight);
    QCOMPARE(editor.scrollBar()->maximum() > 0, scrolls);
    // The window ends where the list's container does.
    QCOMPARE(lowestChildBottom(*editor.actions, *editor.window), editor.window->height());

    // Adding grows the window with the list, until the list scrolls instead.
    const int before = editor.window->height();
    editor.actions->editor().addControl();
    QTRY_COMPARE(editor.window->maximumHeight(), editor.window->height());
    QCOMPARE(editor.window->height() > before, !scrolls);
    QCOMPARE(lowestChildBottom(*editor.actions, *editor.window), editor.window->height());
    // The new row is in view and alone selected.
    QCOMPARE(editor.selection(), QList<int> { int(editor.rows().size()) - 1 });
    const QRect visible = editor.list()->visibleRect();
    QVERIFY(visible.contains(editor.rows().constLast()->geometry()));
}

void TestActionsEditor::clicksSelect_data()
{
    QTest::addColumn<QList<int>>("before");
    QTest::addColumn<int>("clicked");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QList<int>>("after");
    const Qt::KeyboardModifiers none, control(Qt::ControlModifier), shift(Qt::ShiftModifier);
    QTest::newRow("plain click selects one") << QList { 1, 3 } << 4 << none << QList { 4 };
    QTest::newRow("control adds one") << QList { 1 } << 3 << control << QList { 1, 3 };
    QTest::newRow("control removes one") << QList { 1, 3 } << 3 << control << QList { 1 };
    QTest::newRow("shift below extends down") << QList { 1 } << 4 << shift << QList { 1, 2, 3, 4 };
    QTest::newRow("shift above extends up") << QList { 3 } << 0 << shift << QList { 0, 1, 2, 3 };
    QTest::newRow("shift above stops at first selected") << QList { 2, 5 } << 0 << shift << QList { 0, 1, 2, 5 };
    QTest::newRow("shift below keeps others") << QList { 0, 4 } << 2 << shift << QList { 0, 1, 2, 4 };
    QTest::newRow("shift with nothing selected goes to the end") << QList<int>() << 2 << shift << QList { 2, 3, 4, 5 };
    QTest::newRow("shift on a selected row changes nothing") << QList { 1, 2 } << 2 << shift << QList { 1, 2 };
}

void TestActionsEditor::clicksSelect()
{
    QFETCH(QList<int>, before);
    QFETCH(int, clicked);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(QList<int>, after);
    Editor editor(6);
    editor.select(before);
    editor.click(clicked, modifiers);
    QCOMPARE(editor.selection(), after);
    QCOMPARE(editor.order(), QList({ 0, 1, 2, 3, 4, 5 })); // a click is no drag
    QVERIFY(editor.list()->hasFocus());
    auto *deleteButton = editor.actions->findChild<QAbstractButton *>(QStringLiteral("deleteButton"));
    QCOMPARE(deleteButton->isEnabled(), !after.isEmpty());

    // A right click changes nothing; the list's background and a row's outer margin deselect.
    QTest::mouseClick(editor.handle(), Qt::RightButton, {}, editor.inWindow(editor.row(2), 2));
    QCOMPARE(editor.selection(), after);
    // The list's background and a row's outer margin deselect.
    QTest::mouseClick(editor.handle(), Qt::LeftButton, {}, editor.inWindow(editor.row(2), 2));
    QCOMPARE(editor.selection(), QList<int>());
    QVERIFY(!deleteButton->isEnabled());
}

void TestActionsEditor::keysSelectAndDelete()
{
    Editor editor(4);
    editor.click(0);
    QTest::keyClick(editor.handle(), Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(editor.selection(), QList({ 0, 1, 2, 3 }));

    editor.select({ 1, 2 });
    QTest::keyClick(editor.handle(), Qt::Key_Delete);
    QCOMPARE(editor.order(), QList({ 0, 3 }));
    QCOMPARE(editor.beeps, 0);
    editor.click(1);
    QTest::keyClick(editor.handle(), Qt::Key_Backspace);
    QCOMPARE(editor.order(), QList({ 0 }));
    // Nothing selected: a beep, nothing deleted.
    QTest::keyClick(editor.handle(), Qt::Key_Delete);
    QCOMPARE(editor.beeps, 1);
    QCOMPARE(editor.order(), QList({ 0 }));
    QCOMPARE(editor.container()->height(), 5 + editor.row(0)->height() + 5 + 42);
}

void TestActionsEditor::addGoesBelowSelection_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QList<int>>("selected");
    QTest::addColumn<int>("newIndex");
    QTest::newRow("below the lowest selected") << 3 << QList { 0, 1 } << 2;
    QTest::newRow("nothing selected: at the end") << 3 << QList<int>() << 3;
    QTest::newRow("one control selected: after it") << 1 << QList { 0 } << 1;
}

void TestActionsEditor::addGoesBelowSelection()
{
    QFETCH(int, count);
    QFETCH(QList<int>, selected);
    QFETCH(int, newIndex);
    Editor editor(count);
    editor.select(selected);
    QTest::mouseClick(editor.actions->findChild<QAbstractButton *>(QStringLiteral("addButton")), Qt::LeftButton);
    QCOMPARE(editor.manager.controls().size(), count + 1);
    QCOMPARE(editor.order().indexOf(-1), newIndex);
    QCOMPARE(editor.selection(), QList { newIndex });
    QCOMPARE(editor.manager.controls().at(newIndex)->displayTitleWithSuffixes(nullptr), QStringLiteral("Move Right"));
}

void TestActionsEditor::expandSwitchCollapses()
{
    Editor editor(3);
    const int expandedHeight = editor.row(0)->height();
    QToolButton *expand = editor.row(1)->controls().expandSwitch;
    QVERIFY(expand->isVisible() && expand->isChecked());
    QTest::mouseClick(expand, Qt::LeftButton);
    QVERIFY(editor.manager.controls().at(1)->collapsed());
    QVERIFY(!editor.manager.controls().at(0)->collapsed());
    QVERIFY(editor.row(1)->height() < expandedHeight);
    QCOMPARE(editor.row(2)->y(), editor.row(1)->geometry().bottom() + 1); // rows abut

    // Alt on one switch collapses or expands every row.
    QTest::mouseClick(editor.row(0)->controls().expandSwitch, Qt::LeftButton, Qt::AltModifier);
    for (const QVCustomControlRef &control : editor.manager.controls())
        QVERIFY(control->collapsed());
    QTest::mouseClick(editor.row(2)->controls().expandSwitch, Qt::LeftButton, Qt::AltModifier);
    for (QVCustomControlConfigurationView *row : editor.rows()) {
        QVERIFY(!row->controlRepresentation()->collapsed());
        QVERIFY(row->controls().expandSwitch->isChecked());
        QCOMPARE(row->height(), expandedHeight);
    }
}

void TestActionsEditor::headingLosesHotKey()
{
    Editor editor(0, QVEditorTestControls());
    QVCustomControlConfigurationView *row = editor.row(1);
    const QVHotKeyRef hotKey = row->controlRepresentation()->hotKey();
    QVERIFY(hotKey && hotKey->isRegistered());
    QComboBox *selector = row->controls().actionSelector;
    selector->setCurrentIndex(selector->findData(QVAction::Heading));
    Q_EMIT selector->activated(selector->currentIndex());
    QCOMPARE(row->controlRepresentation()->action(), QVAction::Heading);
    QVERIFY(!row->controlRepresentation()->hotKey());
    QVERIFY(!hotKey->isRegistered());
    QVERIFY(!row->controls().hotKeyTextView->isVisible());
    QVERIFY(row->controls().headerBox->isVisible());
    // And back: a field without a hot key.
    selector->setCurrentIndex(selector->findData(QVAction::Click));
    Q_EMIT selector->activated(selector->currentIndex());
    QVERIFY(row->controls().hotKeyTextView->isVisible());
    QVERIFY(!row->controls().expandSwitch->isVisible());
}

void TestActionsEditor::dragReorders_data()
{
    QTest::addColumn<QList<int>>("selected");
    QTest::addColumn<int>("pressed");
    QTest::addColumn<int>("rowsDown"); // how far the pointer goes, in rows
    QTest::addColumn<QList<int>>("order");
    QTest::newRow("one row down") << QList<int>() << 0 << 2 << QList { 1, 2, 0, 3, 4, 5 };
    QTest::newRow("one row up") << QList<int>() << 4 << -3 << QList { 0, 4, 1, 2, 3, 5 };
    QTest::newRow("unselected row alone") << QList { 2, 3 } << 0 << 1 << QList { 1, 0, 2, 3, 4, 5 };
    QTest::newRow("the selection together, past one") << QList { 1, 2 } << 1 << 2 << QList { 0, 3, 1, 2, 4, 5 };
    QTest::newRow("the selection together, down to the end") << QList { 0, 2 } << 2 << 5 << QList { 1, 3, 4, 5, 0, 2 };
    QTest::newRow("every row: nothing moves") << QList { 0, 1, 2, 3, 4, 5 } << 0 << 3 << QList { 0, 1, 2, 3, 4, 5 };
}

void TestActionsEditor::dragReorders()
{
    QFETCH(QList<int>, selected);
    QFETCH(int, pressed);
    QFETCH(int, rowsDown);
    QFETCH(QList<int>, order);
    // Collapsed, so that all are in view.
    QJsonArray stored;
    for (int count = 0; count < 6; ++count)
        stored.append(QJsonObject { { QStringLiteral("Collapsed"), true } });
    Editor editor(0, stored);
    editor.select(selected);
    const int rowHeight = editor.row(0)->height();
    const QPoint start = editor.inWindow(editor.row(pressed));
    QTest::mousePress(editor.handle(), Qt::LeftButton, {}, start);
    // In small steps, as a hand moves.
    const int distance = rowsDown * rowHeight + (rowsDown > 0 ? 8 : -8);
    for (int step = 1; step <= 10; ++step)
        QTest::mouseMove(editor.handle(), start + QPoint(0, distance * step / 10));
    QTest::mouseRelease(editor.handle(), Qt::LeftButton, {}, start + QPoint(0, distance));
    QCOMPARE(editor.order(), order);
    // A drag selects nothing: the same controls stay selected.
    QList<int> stillSelected;
    for (const int index : editor.selection())
        stillSelected.append(editor.order().at(index));
    std::sort(stillSelected.begin(), stillSelected.end());
    QCOMPARE(stillSelected, selected);
    // Back in place, abutting, none left marked as moving.
    int y = 5;
    for (QVCustomControlConfigurationView *row : editor.rows()) {
        QCOMPARE(row->y(), y);
        QVERIFY(row->moveSortFrame().isEmpty());
        y += row->height();
    }
}

void TestActionsEditor::dragScrollsAndKeyCancels()
{
    Editor editor(20);
    QCOMPARE(editor.scrollBar()->value(), 0);
    const QPoint start = editor.inWindow(editor.row(0));
    QTest::mousePress(editor.handle(), Qt::LeftButton, {}, start);
    const QPoint bottom = editor.actions->findChild<QScrollArea *>()->viewport()->mapTo(
        editor.window.get(), QPoint(50, editor.list()->visibleRect().height() - 4));
    QTest::mouseMove(editor.handle(), start + QPoint(0, 10));
    QTest::mouseMove(editor.handle(), bottom);
    // The list scrolls while the pointer stays near its bottom edge, dragging the row along.
    QTRY_VERIFY(editor.scrollBar()->value() >= 60);
    QTRY_VERIFY(editor.order().indexOf(0) > 3); // the row follows at the next step
    // Any key ends the drag and puts the order back.
    QTest::keyClick(editor.handle(), Qt::Key_Shift);
    QCOMPARE(
        editor.order(), editor.order().isEmpty() ? QList<int>() : [] {
            QList<int> all;
            for (int index = 0; index < 20; ++index)
                all.append(index);
            return all;
        }());
    QTest::mouseRelease(editor.handle(), Qt::LeftButton, {}, bottom);
    QCOMPARE(editor.selection(), QList<int>());
    QVERIFY(editor.row(0)->moveSortFrame().isEmpty());
}

void TestActionsEditor::editsAreReported()
{
    Editor editor(0, QVEditorTestControls());
    QSignalSpy edited(editor.actions, &QVActionsPreferencesPage::controlsEdited);
    const QVCustomControlRowControls &move = editor.row(1)->controls();
    QTest::mouseClick(
        move.moveAccelerateSwitch, Qt::LeftButton, {}, QPoint(8, move.moveAccelerateSwitch->height() / 2));
    QCOMPARE(editor.manager.controls().at(1)->moveAccelerate(), false);
    QTest::mouseClick(move.moveDirectionSelector->radioAt(QVPosition::Top), Qt::LeftButton);
    QCOMPARE(editor.manager.controls().at(1)->moveDirection(), QVPosition::Top);
    QCOMPARE(editor.row(1)->accessibleName(), QStringLiteral("Move Up"));
    const QVCustomControlRowControls &heading = editor.row(0)->controls();
    QTest::keyClicks(heading.headerTitleField, QStringLiteral(" Pointer"));
    QCOMPARE(editor.manager.controls().at(0)->title(), QStringLiteral("Arrows Pointer"));
    heading.headerTitleField->clear();
    QTest::keyClicks(heading.headerTitleField, QStringLiteral("   "));
    QCOMPARE(editor.manager.controls().at(0)->title(), QString());
    QVERIFY(edited.count() >= 4);
}

void TestActionsEditor::refusalIsShownUnderTheList()
{
    Editor editor(0, QVEditorTestControls());
    QVHotKeyTextView *field = editor.row(3)->controls().hotKeyTextView;
    field->beginRecording();
    QVEvent keyDown;
    keyDown.type = QVEvent::KeyDown;
    keyDown.keyCode = 113; // Left, held by "Move Left" with Control and Alt
    keyDown.modifierFlags = 0x40000 | 0x80000;
    field->keyDown(keyDown);
    auto *message = editor.actions->findChild<QLabel *>(QStringLiteral("messageLine"));
    QCOMPARE(message->text(), QStringLiteral("“^⌥←” is used by “Move Left”."));
    QVERIFY(field->isRecording()); // refused, still waiting for another
    QVERIFY(!editor.manager.controls().at(3)->hotKey());
    keyDown.keyCode = 9; // Escape
    keyDown.modifierFlags = 0;
    field->keyDown(keyDown);
    QVERIFY(!field->isRecording());
}

void TestActionsEditor::commandWhereKeysAreNotGranted()
{
    Editor editor;
    editor.application.platform.hotKeysGranted = false;
    editor.actions->editor().addControl();
    editor.actions->editor().addControl();
    const QVCustomControlRowControls &row = editor.row(1)->controls();
    QVERIFY(!row.hotKeyTextView->isVisible());
    QVERIFY(!row.hotKeyClearButton->isVisible());
    QVERIFY(row.performCommandField->isVisible());
    // The settings file is not the default one: the command names it, quoted for the shell.
    const QString identifier = editor.manager.controls().at(1)->uniqueIdentifier();
    QVERIFY2(row.performCommandField->text().startsWith(QStringLiteral("corvane --settings ")),
        qPrintable(row.performCommandField->text()));
    QVERIFY(row.performCommandField->text().endsWith(QStringLiteral(" --perform ") + identifier));
    QCOMPARE(row.performCommandField->accessibleName(), QStringLiteral("Command for Move Right"));
    saveScreenshot(*editor.window, QStringLiteral("command"));
    // A heading has nothing to bind.
    QComboBox *selector = row.actionSelector;
    selector->setCurrentIndex(selector->findData(QVAction::Heading));
    Q_EMIT selector->activated(selector->currentIndex());
    QVERIFY(!row.performCommandField->isVisible());
}

void TestActionsEditor::everyPartIsNamed()
{
    Editor editor(0, QVEditorTestControls());
    QCOMPARE(widgetsWithoutAccessibleName(*editor.window).join(QLatin1Char(',')), QString());
    // Scrolled out of view counts too.
    editor.scrollBar()->setValue(editor.scrollBar()->maximum());
    QCOMPARE(widgetsWithoutAccessibleName(*editor.window), QStringList());
    const QVCustomControlRowControls &move = editor.row(1)->controls();
    QCOMPARE(move.hotKeyTextView->accessibleName(), QStringLiteral("Hot key of Move Right"));
    QCOMPARE(move.actionSelector->accessibleName(), QStringLiteral("Action of Move Right"));
    QCOMPARE(move.moveDirectionSelector->radioAt(QVPosition::TopLeft)->accessibleName(),
        QStringLiteral("Direction: Up & Left"));

    QCOMPARE(QAccessible::queryAccessibleInterface(move.moveDirectionSelector->radioAt(QVPosition::Top))->role(),
        QAccessible::RadioButton);
    // A list of items that tell whether they are selected.
    QCOMPARE(QAccessible::queryAccessibleInterface(editor.list())->role(), QAccessible::List);
    QAccessibleInterface *item = QAccessible::queryAccessibleInterface(editor.row(1));
    QCOMPARE(item->role(), QAccessible::ListItem);
    QCOMPARE(item->text(QAccessible::Name), QStringLiteral("Move Right"));
    QVERIFY(!item->state().selected);
    editor.click(1);
    QVERIFY(item->state().selected);
}

void TestActionsEditor::screenshots()
{
    Editor editor(0, QVEditorTestControls());
    editor.window->resize(editor.window->width(), editor.window->height());
    saveScreenshot(*editor.window, QStringLiteral("dozen"));
    editor.click(3);
    editor.click(5, Qt::ControlModifier);
    saveScreenshot(*editor.window, QStringLiteral("selected"));
    const QPoint start = editor.inWindow(editor.row(3));
    QTest::mousePress(editor.handle(), Qt::LeftButton, {}, start);
    QTest::mouseMove(editor.handle(), start + QPoint(0, 10));
    QTest::mouseMove(editor.handle(), start + QPoint(0, 60));
    saveScreenshot(*editor.window, QStringLiteral("mid-drag"));
    QTest::mouseRelease(editor.handle(), Qt::LeftButton, {}, start + QPoint(0, 60));
    Editor empty;
    saveScreenshot(*empty.window, QStringLiteral("empty"));
}

QTEST_MAIN(TestActionsEditor)
#include "tst_actionseditor.moc"
