#pragma once

#include <QList>
#include <QtGlobal>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QToolButton;
class QWidget;
class QVCustomControlDirectionSelectorView;
class QVHotKeyClearButton;
class QVHotKeyTextView;

// The controls of one row of the editor, made and placed as the row's design has
// them: on the first line the action pop-up, the hot key field with its clear
// button and the switch that shows the details; below, the one box of details the
// action has. A detail box is made when an action first needs it: long lists open
// quickly. The row owns them all (they are its children).
struct QVCustomControlRowControls final {
    // Height of the first line, the header band of the row.
    static constexpr int headerHeight = 40;

    explicit QVCustomControlRowControls(QWidget &row);

    // Places every control for the row's width.
    void layOut(int rowWidth);
    // The detail box the action shows, made if need be; null for an action without one.
    QWidget *makeDetailBoxForAction(qint64 action);
    // The detail box the action shows if it was made, else null.
    QWidget *detailBoxForAction(qint64 action) const;
    // Every detail box made so far.
    QList<QWidget *> detailBoxes() const;
    // Boxes are as tall as the Move box, so rows of every action line up.
    static int detailBoxHeight();
    // Items of the pop-ups carry the action codes and the steps in pixels.
    static void addActionItems(QComboBox &selector);
    static void addDeltaItems(QComboBox &selector);
    // Selects the step, adding an item for one the list lacks.
    static void selectDelta(QComboBox &selector, qint64 delta);

    QToolButton *expandSwitch;
    QComboBox *actionSelector;
    QVHotKeyTextView *hotKeyTextView;
    QVHotKeyClearButton *hotKeyClearButton;
    // Instead of the two above where Corvane cannot take keys: the command to bind.
    QLineEdit *performCommandField;

    // Null until made.
    QWidget *moveBox = nullptr;
    QVCustomControlDirectionSelectorView *moveDirectionSelector = nullptr;
    QComboBox *moveDeltaSelector = nullptr;
    QCheckBox *moveAccelerateSwitch = nullptr;
    QCheckBox *moveConfinedToDisplaySwitch = nullptr;

    QVCustomControlDirectionSelectorView *moveToEdgeOrCornerPositionSelector = nullptr;

    QWidget *otherDisplayBox = nullptr;
    QVCustomControlDirectionSelectorView *moveToOtherDisplayDirectionSelector = nullptr;
    QCheckBox *moveToOtherDisplayRepositionSwitch = nullptr;
    QCheckBox *moveToOtherDisplayLoopSwitch = nullptr;

    QWidget *headerBox = nullptr;
    QLineEdit *headerTitleField = nullptr;

private:
    void makeMoveBox();
    void makeEdgeOrCornerSelector();
    void makeOtherDisplayBox();
    void makeHeaderBox();

    QWidget &m_row;
};
