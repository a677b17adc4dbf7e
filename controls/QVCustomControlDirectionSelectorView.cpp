#include "QVCustomControlDirectionSelectorView.h"

#include "QVActionCodes.h"
#include "QVCustomControlDirectionSelectorViewDelegate.h"

#include <QRadioButton>
#include <QResizeEvent>
#include <QStyle>

#include <algorithm>
#include <array>

namespace
{

using Selector = QVCustomControlDirectionSelectorView;

// The grid in reading order: top left, top, top right, left, centre, right, bottom left, bottom, bottom right.
constexpr std::array<qint64, 9> gridPositions {
    QVPosition::TopLeft,
    QVPosition::Top,
    QVPosition::TopRight,
    QVPosition::Left,
    QVPosition::Center,
    QVPosition::Right,
    QVPosition::BottomLeft,
    QVPosition::Bottom,
    QVPosition::BottomRight,
};

constexpr int cellGap = 3;

int gridIndex(qint64 position)
{
    const auto found = std::find(gridPositions.begin(), gridPositions.end(), position);
    return found == gridPositions.end() ? -1 : int(found - gridPositions.begin());
}

QList<qint64> defaultPositions(Selector::Meaning meaning)
{
    using namespace QVPosition;
    switch (meaning) {
    case Selector::Meaning::MoveDirection:
        return { TopLeft, Top, TopRight, Left, Right, BottomLeft, Bottom, BottomRight };
    case Selector::Meaning::EdgeOrCorner: return { gridPositions.begin(), gridPositions.end() };
    case Selector::Meaning::DisplaySide: return { Top, Left, Right, Bottom };
    }
    return {};
}

QString selectorName(Selector::Meaning meaning)
{
    switch (meaning) {
    case Selector::Meaning::MoveDirection: return QVCustomControlDirectionSelectorView::tr("Direction");
    case Selector::Meaning::EdgeOrCorner: return QVCustomControlDirectionSelectorView::tr("Edge or corner");
    case Selector::Meaning::DisplaySide: return QVCustomControlDirectionSelectorView::tr("Side of the other display");
    }
    return {};
}

QString moveDirectionName(qint64 position)
{
    switch (position) {
    case QVPosition::Top: return QVCustomControlDirectionSelectorView::tr("Direction: Up");
    case QVPosition::TopRight: return QVCustomControlDirectionSelectorView::tr("Direction: Up & Right");
    case QVPosition::Right: return QVCustomControlDirectionSelectorView::tr("Direction: Right");
    case QVPosition::BottomRight: return QVCustomControlDirectionSelectorView::tr("Direction: Down & Right");
    case QVPosition::Bottom: return QVCustomControlDirectionSelectorView::tr("Direction: Down");
    case QVPosition::BottomLeft: return QVCustomControlDirectionSelectorView::tr("Direction: Down & Left");
    case QVPosition::Left: return QVCustomControlDirectionSelectorView::tr("Direction: Left");
    case QVPosition::TopLeft: return QVCustomControlDirectionSelectorView::tr("Direction: Up & Left");
    default: return {};
    }
}

QString edgeOrCornerName(qint64 position)
{
    switch (position) {
    case QVPosition::Top: return QVCustomControlDirectionSelectorView::tr("Position: Top Edge");
    case QVPosition::TopRight: return QVCustomControlDirectionSelectorView::tr("Position: Top Right Corner");
    case QVPosition::Right: return QVCustomControlDirectionSelectorView::tr("Position: Right Edge");
    case QVPosition::BottomRight: return QVCustomControlDirectionSelectorView::tr("Position: Bottom Right Corner");
    case QVPosition::Bottom: return QVCustomControlDirectionSelectorView::tr("Position: Bottom Edge");
    case QVPosition::BottomLeft: return QVCustomControlDirectionSelectorView::tr("Position: Bottom Left Corner");
    case QVPosition::Left: return QVCustomControlDirectionSelectorView::tr("Position: Left Edge");
    case QVPosition::TopLeft: return QVCustomControlDirectionSelectorView::tr("Position: Top Left Corner");
    case QVPosition::Center: return QVCustomControlDirectionSelectorView::tr("Position: Center");
    default: return {};
    }
}

QString displaySideName(qint64 position)
{
    switch (position) {
    case QVPosition::Top: return QVCustomControlDirectionSelectorView::tr("Display: Above");
    case QVPosition::Right: return QVCustomControlDirectionSelectorView::tr("Display: on the Right");
    case QVPosition::Bottom: return QVCustomControlDirectionSelectorView::tr("Display: Below");
    case QVPosition::Left: return QVCustomControlDirectionSelectorView::tr("Display: on the Left");
    default: return {};
    }
}

QString radioName(Selector::Meaning meaning, qint64 position)
{
    switch (meaning) {
    case Selector::Meaning::MoveDirection: return moveDirectionName(position);
    case Selector::Meaning::EdgeOrCorner: return edgeOrCornerName(position);
    case Selector::Meaning::DisplaySide: return displaySideName(position);
    }
    return {};
}

// A radio whose state only its selector sets: a click asks the selector instead of
// toggling, so the radio that is on stays on and no other turns on by itself.
class SelectorRadio final : public QRadioButton
{
public:
    using QRadioButton::QRadioButton;

protected:
    void nextCheckState() override { }
};

} // namespace

QVCustomControlDirectionSelectorView::QVCustomControlDirectionSelectorView(
    Meaning meaning, const QList<qint64> &positions, QWidget *parent)
    : QVCustomControlBorderView(parent)
    , m_meaning(meaning)
{
    setAccessibleName(selectorName(meaning));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_radios.fill(nullptr, int(gridPositions.size()));
    // Made in reading order, which is also the order Tab visits them.
    for (size_t index = 0; index < gridPositions.size(); ++index) {
        const qint64 position = gridPositions[index];
        if (!positions.contains(position))
            continue;
        // Exclusive, so that screen readers and arrow keys treat the radios as one choice.
        auto *radio = new SelectorRadio(this);
        radio->setAccessibleName(radioName(meaning, position));
        connect(radio, &QAbstractButton::clicked, this, [this, radio] { changeDirection(radio); });
        // Covers state changes that bypass a click, such as an assistive tool's toggle.
        connect(radio, &QAbstractButton::toggled, this, [this, radio](bool on) {
            if (m_settingStates)
                return;
            if (on)
                changeDirection(radio);
            else
                setDirection(m_direction);
        });
        m_radios[int(index)] = radio;
    }
    setDirection(m_direction);
    resize(sizeHint());
}

QVCustomControlDirectionSelectorView::QVCustomControlDirectionSelectorView(Meaning meaning, QWidget *parent)
    : QVCustomControlDirectionSelectorView(meaning, defaultPositions(meaning), parent)
{
}

QRadioButton *QVCustomControlDirectionSelectorView::radioAt(qint64 position) const
{
    const int index = gridIndex(position);
    return index < 0 ? nullptr : m_radios.value(index);
}

void QVCustomControlDirectionSelectorView::setDirection(qint64 direction, QAbstractButton *radio)
{
    if (radio) {
        direction = -1;
        for (int index = 0; index < m_radios.size(); ++index)
            if (m_radios[index] && m_radios[index] == radio)
                direction = gridPositions[size_t(index)];
    } else {
        radio = radioAt(direction);
    }
    m_settingStates = true;
    // An exclusive radio that is on refuses to go off: every radio is set free for a moment.
    const QList<QAbstractButton *> radios = findChildren<QAbstractButton *>(Qt::FindDirectChildrenOnly);
    for (QAbstractButton *button : radios)
        button->setAutoExclusive(false);
    for (QAbstractButton *button : radios)
        button->setChecked(button == radio);
    for (QAbstractButton *button : radios)
        button->setAutoExclusive(true);
    m_settingStates = false;
    m_direction = direction;
}

void QVCustomControlDirectionSelectorView::changeDirection(QAbstractButton *radio)
{
    setDirection(-1, radio);
    if (m_delegate)
        m_delegate->directionSelectorViewDidChangeDirection(*this);
}

QSize QVCustomControlDirectionSelectorView::cellSize() const
{
    QSize cell(style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth, nullptr, this),
        style()->pixelMetric(QStyle::PM_ExclusiveIndicatorHeight, nullptr, this));
    for (const QRadioButton *radio : m_radios)
        if (radio)
            cell = cell.expandedTo(radio->sizeHint());
    return cell;
}

QSize QVCustomControlDirectionSelectorView::sizeHint() const
{
    // Three cells and two gaps, with a margin of one and a half gaps around the grid; square.
    const QSize cell = cellSize();
    const int side = 3 * std::max(cell.width(), cell.height()) + 5 * cellGap;
    return { side, side };
}

void QVCustomControlDirectionSelectorView::resizeEvent(QResizeEvent *event)
{
    QVCustomControlBorderView::resizeEvent(event);
    layOutRadios();
}

void QVCustomControlDirectionSelectorView::changeEvent(QEvent *event)
{
    QVCustomControlBorderView::changeEvent(event);
    if (event->type() == QEvent::StyleChange) {
        updateGeometry();
        layOutRadios();
    }
}

void QVCustomControlDirectionSelectorView::layOutRadios()
{
    const QSize cell = cellSize();
    const QSize grid = 3 * cell + 2 * QSize(cellGap, cellGap);
    const QPoint origin((width() - grid.width()) / 2, (height() - grid.height()) / 2);
    for (int index = 0; index < m_radios.size(); ++index) {
        QRadioButton *radio = m_radios[index];
        if (!radio)
            continue;
        const QPoint cellOrigin
            = origin + QPoint(index % 3 * (cell.width() + cellGap), index / 3 * (cell.height() + cellGap));
        const QSize size = radio->sizeHint();
        radio->setGeometry(
            QRect(cellOrigin + QPoint((cell.width() - size.width()) / 2, (cell.height() - size.height()) / 2), size));
    }
}
