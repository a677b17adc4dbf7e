#pragma once

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
// action has. The row owns them (they are its children).
struct QVCustomControlRowControls final {
    // Height of the first line, the header band of the row.
    static constexpr int headerHeight = 40;

    explicit QVCustomControlRowControls(QWidget &row);

    // Places every control for the row's width.
    void layOut(int rowWidth);
    // The detail box the action shows, or null.
    QWidget *detailBoxForAction(qint64 action) const;
    // Boxes are as tall as the Move box, so rows of every action line up.
    int detailBoxHeight() const;
    // Items of the pop-ups carry the action codes and the steps in pixels.
    static void addActionItems(QComboBox &selector);
    static void addDeltaItems(QComboBox &selector);
    // Selects the step, adding an item for one the list lacks.
    static void selectDelta(QComboBox &selector, qint64 delta);

    QToolButton *expandSwitch;
    QComboBox *actionSelector;
    QVHotKeyTextView *hotKeyTextView;
    QVHotKeyClearButton *hotKeyClearButton;

    QWidget *moveBox;
    QVCustomControlDirectionSelectorView *moveDirectionSelector;
    QComboBox *moveDeltaSelector;
    QCheckBox *moveAccelerateSwitch;
    QCheckBox *moveConfinedToDisplaySwitch;

    QVCustomControlDirectionSelectorView *moveToEdgeOrCornerPositionSelector;

    QWidget *otherDisplayBox;
    QVCustomControlDirectionSelectorView *moveToOtherDisplayDirectionSelector;
    QCheckBox *moveToOtherDisplayRepositionSwitch;
    QCheckBox *moveToOtherDisplayLoopSwitch;

    QWidget *headerBox;
    QLineEdit *headerTitleField;
};
