#include "QVCustomControlRowControls.h"

#include "QVActionCodes.h"
#include "QVExpandSwitch.h"
#include "QVHotKeyClearButton.h"
#include "QVHotKeyTextView.h"
#include "QVRoundedCustomControlDirectionSelectorView.h"
#include "QVStringExtensions.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

namespace
{

// The first line: controls centred on the icon, within the header band.
constexpr int headerControlTop = 13;
constexpr int headerControlHeight = 22;
constexpr int popUpLeft = 46;
constexpr int hotKeyFieldWidth = 150;
constexpr int clearButtonSize = 16;
constexpr int expandSwitchSize = 20;
constexpr int rightInset = 18;
constexpr int gap = 6;
// Detail boxes sit under the pop-up, below the band.
constexpr int detailBoxTop = QVCustomControlRowControls::headerHeight + 10;
constexpr qint64 deltas[] = { 1, 2, 3, 5, 10, 20, 50, 100 };

QString tr(const char *text)
{
    return QCoreApplication::translate("QVCustomControlRowControls", text);
}

QString titleOf(const char *text)
{
    return QCoreApplication::translate("QVCustomControlRepresentation", text);
}

QCheckBox *newSwitch(const QString &title, const QString &objectName, QWidget *parent)
{
    auto *box = new QCheckBox(title, parent);
    box->setObjectName(objectName);
    box->setAccessibleName(title);
    return box;
}

// The pop-up as wide as its selected item needs, as a button showing that item is:
// its own width for the widest item, less what that item is wider than this one.
int selectedItemWidth(const QComboBox &selector)
{
    const QFontMetrics metrics = selector.fontMetrics();
    int widest = 0;
    for (int index = 0; index < selector.count(); ++index)
        widest = qMax(widest, metrics.horizontalAdvance(selector.itemText(index)));
    return selector.sizeHint().width() - widest + metrics.horizontalAdvance(selector.currentText());
}

QWidget *newDetailBox(const QString &objectName, const QString &name, QWidget &row)
{
    auto *box = new QWidget(&row);
    box->setObjectName(objectName);
    box->setAccessibleName(name);
    box->hide();
    return box;
}

// A detail box's grid: the selector at the left over three rows, its settings beside it.
QGridLayout *newSelectorGrid(QWidget &box, QWidget &selector)
{
    auto *grid = new QGridLayout(&box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(14);
    grid->setVerticalSpacing(4);
    grid->addWidget(&selector, 0, 0, 3, 1, Qt::AlignTop);
    return grid;
}

} // namespace

QVCustomControlRowControls::QVCustomControlRowControls(QWidget &row)
    : m_row(row)
{
    expandSwitch = new QVExpandSwitch(&row);
    expandSwitch->setObjectName(QStringLiteral("expandSwitch"));
    expandSwitch->setAccessibleName(tr("Show Details"));

    actionSelector = new QComboBox(&row);
    actionSelector->setObjectName(QStringLiteral("actionSelector"));
    addActionItems(*actionSelector);

    hotKeyTextView = new QVHotKeyTextView(&row);
    hotKeyTextView->setObjectName(QStringLiteral("hotKeyTextView"));
    hotKeyClearButton = new QVHotKeyClearButton(&row);
    hotKeyClearButton->setObjectName(QStringLiteral("hotKeyClearButton"));
    hotKeyTextView->setDeleteButton(hotKeyClearButton);

    performCommandField = new QLineEdit(&row);
    performCommandField->setObjectName(QStringLiteral("performCommandField"));
    performCommandField->setReadOnly(true);
    performCommandField->setToolTip(tr("This desktop binds keys itself: bind this command to a key in its settings. "
                                       "A Move repeats until the same command with --perform-release."));
    performCommandField->hide();
}

void QVCustomControlRowControls::makeMoveBox()
{
    using Meaning = QVCustomControlDirectionSelectorView::Meaning;
    moveBox = newDetailBox(QStringLiteral("moveBox"), tr("Move settings"), m_row);
    moveDirectionSelector = new QVRoundedCustomControlDirectionSelectorView(Meaning::MoveDirection, moveBox);
    moveDirectionSelector->setObjectName(QStringLiteral("moveDirectionSelector"));
    auto *deltaLabel = new QLabel(tr("Step:"), moveBox);
    deltaLabel->setAccessibleName(deltaLabel->text());
    moveDeltaSelector = new QComboBox(moveBox);
    moveDeltaSelector->setObjectName(QStringLiteral("moveDeltaSelector"));
    addDeltaItems(*moveDeltaSelector);
    deltaLabel->setBuddy(moveDeltaSelector);
    moveAccelerateSwitch = newSwitch(titleOf("Accelerate"), QStringLiteral("moveAccelerateSwitch"), moveBox);
    moveConfinedToDisplaySwitch
        = newSwitch(titleOf("Confine to Display"), QStringLiteral("moveConfinedToDisplaySwitch"), moveBox);
    QGridLayout *moveLayout = newSelectorGrid(*moveBox, *moveDirectionSelector);
    auto *deltaRow = new QHBoxLayout;
    deltaRow->addWidget(deltaLabel);
    deltaRow->addWidget(moveDeltaSelector);
    deltaRow->addStretch(1);
    moveLayout->addLayout(deltaRow, 0, 1);
    moveLayout->addWidget(moveAccelerateSwitch, 1, 1);
    moveLayout->addWidget(moveConfinedToDisplaySwitch, 2, 1);
    moveLayout->setColumnStretch(1, 1);
}

void QVCustomControlRowControls::makeEdgeOrCornerSelector()
{
    using Meaning = QVCustomControlDirectionSelectorView::Meaning;
    moveToEdgeOrCornerPositionSelector = new QVRoundedCustomControlDirectionSelectorView(Meaning::EdgeOrCorner, &m_row);
    moveToEdgeOrCornerPositionSelector->setObjectName(QStringLiteral("moveToEdgeOrCornerPositionSelector"));
    moveToEdgeOrCornerPositionSelector->hide();
}

void QVCustomControlRowControls::makeOtherDisplayBox()
{
    using Meaning = QVCustomControlDirectionSelectorView::Meaning;
    otherDisplayBox = newDetailBox(QStringLiteral("otherDisplayBox"), tr("Other display settings"), m_row);
    moveToOtherDisplayDirectionSelector
        = new QVRoundedCustomControlDirectionSelectorView(Meaning::DisplaySide, otherDisplayBox);
    moveToOtherDisplayDirectionSelector->setObjectName(QStringLiteral("moveToOtherDisplayDirectionSelector"));
    moveToOtherDisplayRepositionSwitch = newSwitch(
        tr("Reposition Proportionally"), QStringLiteral("moveToOtherDisplayRepositionSwitch"), otherDisplayBox);
    moveToOtherDisplayLoopSwitch
        = newSwitch(tr("Loop Through Displays"), QStringLiteral("moveToOtherDisplayLoopSwitch"), otherDisplayBox);
    QGridLayout *otherDisplayLayout = newSelectorGrid(*otherDisplayBox, *moveToOtherDisplayDirectionSelector);
    otherDisplayLayout->addWidget(moveToOtherDisplayRepositionSwitch, 0, 1);
    otherDisplayLayout->addWidget(moveToOtherDisplayLoopSwitch, 1, 1);
    otherDisplayLayout->setRowStretch(2, 1);
    otherDisplayLayout->setColumnStretch(1, 1);
}

void QVCustomControlRowControls::makeHeaderBox()
{
    headerBox = newDetailBox(QStringLiteral("headerBox"), tr("Heading settings"), m_row);
    auto *titleLabel = new QLabel(tr("Title:"), headerBox);
    titleLabel->setAccessibleName(titleLabel->text());
    headerTitleField = new QLineEdit(headerBox);
    headerTitleField->setObjectName(QStringLiteral("headerTitleField"));
    headerTitleField->setPlaceholderText(titleOf("Untitled"));
    titleLabel->setBuddy(headerTitleField);
    auto *headerLayout = new QHBoxLayout(headerBox);
    headerLayout->setContentsMargins(0, 0, 0, 0);
    headerLayout->addWidget(titleLabel);
    headerLayout->addWidget(headerTitleField, 1);
    headerLayout->setAlignment(Qt::AlignTop);
}

QWidget *QVCustomControlRowControls::makeDetailBoxForAction(qint64 action)
{
    switch (action) {
    case QVAction::Move:
        if (!moveBox)
            makeMoveBox();
        break;
    case QVAction::MoveToEdgeOrCorner:
        if (!moveToEdgeOrCornerPositionSelector)
            makeEdgeOrCornerSelector();
        break;
    case QVAction::MoveToOtherDisplay:
        if (!otherDisplayBox)
            makeOtherDisplayBox();
        break;
    case QVAction::Heading:
        if (!headerBox)
            makeHeaderBox();
        break;
    default: break;
    }
    return detailBoxForAction(action);
}

QList<QWidget *> QVCustomControlRowControls::detailBoxes() const
{
    QList<QWidget *> boxes;
    for (QWidget *box :
        { moveBox, static_cast<QWidget *>(moveToEdgeOrCornerPositionSelector), otherDisplayBox, headerBox })
        if (box)
            boxes.append(box);
    return boxes;
}

void QVCustomControlRowControls::addActionItems(QComboBox &selector)
{
    const auto add = [&selector](const QString &title, qint64 action) { selector.addItem(title, action); };
    add(titleOf("Move"), QVAction::Move);
    add(titleOf("Move to Edge/Corner"), QVAction::MoveToEdgeOrCorner);
    add(tr("Move to Center"), QVAction::MoveToCenter);
    add(titleOf("Move to Other Display"), QVAction::MoveToOtherDisplay);
    add(titleOf("Move to Screen Section..."), QVAction::MoveToScreenSection);
    selector.insertSeparator(selector.count());
    add(titleOf("Click"), QVAction::Click);
    add(titleOf("Right Click"), QVAction::RightClick);
    selector.insertSeparator(selector.count());
    add(tr("Heading"), QVAction::Heading);
    add(tr("None"), QVAction::None);
}

void QVCustomControlRowControls::addDeltaItems(QComboBox &selector)
{
    for (const qint64 delta : deltas)
        selector.addItem(QVStringWithInteger(titleOf("%ld px"), delta), delta);
}

void QVCustomControlRowControls::selectDelta(QComboBox &selector, qint64 delta)
{
    int index = selector.findData(delta);
    if (index < 0) {
        // A step written into the file by hand is shown as it is.
        index = selector.count();
        selector.addItem(QVStringWithInteger(titleOf("%ld px"), delta), delta);
    }
    selector.setCurrentIndex(index);
}

QWidget *QVCustomControlRowControls::detailBoxForAction(qint64 action) const
{
    switch (action) {
    case QVAction::Move: return moveBox;
    case QVAction::MoveToEdgeOrCorner: return moveToEdgeOrCornerPositionSelector;
    case QVAction::MoveToOtherDisplay: return otherDisplayBox;
    case QVAction::Heading: return headerBox;
    default: return nullptr;
    }
}

int QVCustomControlRowControls::detailBoxHeight()
{
    // Measured once on a Move box of its own, whatever boxes a row has made.
    static const int height = [] {
        QWidget row;
        QVCustomControlRowControls controls(row);
        return controls.makeDetailBoxForAction(QVAction::Move)->sizeHint().height();
    }();
    return height;
}

void QVCustomControlRowControls::layOut(int rowWidth)
{
    const int right = rowWidth - rightInset;
    expandSwitch->setGeometry(right - expandSwitchSize, headerControlTop + (headerControlHeight - expandSwitchSize) / 2,
        expandSwitchSize, expandSwitchSize);
    const int clearLeft = expandSwitch->x() - gap - clearButtonSize;
    hotKeyClearButton->setGeometry(
        clearLeft, headerControlTop + (headerControlHeight - clearButtonSize) / 2, clearButtonSize, clearButtonSize);
    const int fieldLeft = clearLeft - 2 - hotKeyFieldWidth;
    hotKeyTextView->setGeometry(fieldLeft, headerControlTop, hotKeyFieldWidth, headerControlHeight);
    performCommandField->setGeometry(
        fieldLeft, headerControlTop, clearLeft + clearButtonSize - fieldLeft, headerControlHeight);

    const int popUpWidth = qMin(selectedItemWidth(*actionSelector), fieldLeft - gap - popUpLeft);
    actionSelector->setGeometry(popUpLeft, headerControlTop, popUpWidth, headerControlHeight);

    // Every box reaches down as far as the Move box, so rows of every action line up.
    const int boxWidth = right - popUpLeft;
    for (QWidget *box : detailBoxes()) {
        const int width = box == moveToEdgeOrCornerPositionSelector ? box->sizeHint().width() : boxWidth;
        box->setGeometry(popUpLeft, detailBoxTop, width, qMax(detailBoxHeight(), box->sizeHint().height()));
    }
}
