#include "QVCustomControlCollectionView.h"

#include "QVCustomControlAccessibility.h"
#include "QVCustomControlCollectionViewDelegate.h"
#include "QVCustomControlConfigurationView.h"
#include "QVCustomControlRowDrag.h"
#include "QVCustomControlRowOrder.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>

namespace
{

constexpr int contentPadding = 5; // above the first row and below the last
constexpr int containerExtra = 42; // the container's bar under the list
constexpr int containerMinimumHeight = 102;
constexpr int containerMaximumHeight = 550;

QColor grey(qreal level)
{
    return QColor::fromRgbF(float(level), float(level), float(level));
}

// The hint of an empty list: an arrow down to the add button.
void drawEmptyListHint(QPainter &painter, const QRect &bounds)
{
    static const QFont font = [] {
        QFont bold;
        bold.setPixelSize(33);
        bold.setBold(true);
        return bold;
    }();
    painter.setFont(font);
    painter.setPen(grey(0.8));
    painter.drawText(bounds.adjusted(6, 10, -6, -10), Qt::AlignLeft | Qt::AlignTop, QString(QChar(0x2B07)));
}

} // namespace

QVCustomControlCollectionView::QVCustomControlCollectionView(QWidget *parent)
    : QWidget(parent)
{
    QVInstallCustomControlAccessibility();
    setObjectName(QStringLiteral("collectionView"));
    setAccessibleName(tr("Custom controls"));
    setFocusPolicy(Qt::StrongFocus);
    setAutoFillBackground(false);
}

QVCustomControlCollectionView::~QVCustomControlCollectionView() = default;

QList<QVCustomControlConfigurationView *> QVCustomControlCollectionView::configurationViews() const
{
    return m_delegate
        ? m_delegate->controlConfigurationViewsInCollectionView(const_cast<QVCustomControlCollectionView &>(*this))
        : QList<QVCustomControlConfigurationView *>();
}

QList<QVCustomControlConfigurationView *> QVCustomControlCollectionView::configurationViewsInScreenOrder() const
{
    const QList<QVCustomControlConfigurationView *> rows = configurationViews();
    QList<QVCustomControlRowPlace> places;
    for (const QVCustomControlConfigurationView *row : rows)
        places.append({ QRectF(row->geometry()), row->moveSortFrame(), quintptr(row) });
    QList<QVCustomControlConfigurationView *> sorted;
    for (const int index : QVSortedRowIndexes(places, QRectF(rect())))
        sorted.append(rows[index]);
    return sorted;
}

QScrollArea *QVCustomControlCollectionView::enclosingScrollArea() const
{
    for (QWidget *ancestor = parentWidget(); ancestor; ancestor = ancestor->parentWidget())
        if (auto *area = qobject_cast<QScrollArea *>(ancestor))
            return area;
    return nullptr;
}

QRect QVCustomControlCollectionView::visibleRect() const
{
    const QScrollArea *area = enclosingScrollArea();
    if (!area)
        return rect();
    // The list sits in the viewport at minus the scrolled distance.
    return QRect(-pos(), area->viewport()->size()) & rect();
}

void QVCustomControlCollectionView::scrollRectToVisible(const QRect &target)
{
    QScrollArea *area = enclosingScrollArea();
    if (!area || target.isEmpty())
        return;
    QScrollBar *bar = area->verticalScrollBar();
    const QRect visible(-pos(), area->viewport()->size());
    if (target.top() < visible.top() || target.height() > visible.height())
        bar->setValue(target.top());
    else if (target.bottom() > visible.bottom())
        bar->setValue(target.bottom() + 1 - visible.height());
}

bool QVCustomControlCollectionView::showsActiveSelection() const
{
    return isActiveWindow() && hasFocus();
}

void QVCustomControlCollectionView::selectConfigurationView(
    QVCustomControlConfigurationView *row, Qt::KeyboardModifiers modifiers)
{
    if (modifiers & Qt::ControlModifier) {
        if (row)
            row->setSelected(!row->selected());
    } else if (modifiers & Qt::ShiftModifier) {
        if (row && row->selected())
            return;
        // From the first of the clicked row and the nearest selected one, down to the other.
        bool inside = false;
        bool startedAtRow = false;
        for (QVCustomControlConfigurationView *candidate : configurationViews()) {
            if (!inside) {
                if (candidate == row)
                    inside = startedAtRow = true, candidate->setSelected(true);
                else if (candidate->selected())
                    inside = true;
                continue;
            }
            if (startedAtRow && candidate->selected())
                break; // the anchor
            candidate->setSelected(true);
            if (candidate == row)
                break;
        }
    } else {
        for (QVCustomControlConfigurationView *candidate : configurationViews())
            candidate->setSelected(candidate == row);
    }
    if (m_delegate)
        m_delegate->selectionDidUpdateInCollectionView(*this);
}

QList<QVCustomControlConfigurationView *> QVCustomControlCollectionView::selectedConfigurationViews() const
{
    QList<QVCustomControlConfigurationView *> selected;
    for (QVCustomControlConfigurationView *row : configurationViews())
        if (row->selected())
            selected.append(row);
    return selected;
}

void QVCustomControlCollectionView::selectAll()
{
    for (QVCustomControlConfigurationView *row : configurationViews())
        row->setSelected(true);
    if (m_delegate)
        m_delegate->selectionDidUpdateInCollectionView(*this);
}

void QVCustomControlCollectionView::tileConfigurationViews(bool includingMovingViews, bool adjustWindowHeight)
{
    const QRect visible = visibleRect();
    const QList<QVCustomControlConfigurationView *> rows = configurationViews();
    int contentHeight = contentPadding;
    for (const QVCustomControlConfigurationView *row : rows)
        contentHeight += row->height();
    contentHeight += contentPadding;
    updateContainerHeight(contentHeight, adjustWindowHeight);

    QScrollArea *area = enclosingScrollArea();
    QSize viewport = area ? area->maximumViewportSize() : size();
    if (m_resizableContainerView)
        viewport.setHeight(m_resizableContainerView->height() - containerExtra);
    if (area && contentHeight > viewport.height())
        viewport.rwidth() -= area->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, area);

    int y = contentPadding;
    for (QVCustomControlConfigurationView *row : rows) {
        if (includingMovingViews || row->moveSortFrame().isEmpty()) {
            if (row->parentWidget() != this) {
                row->setParent(this);
                row->show();
            }
            row->setGeometry(0, y, viewport.width(), row->height());
            if (!row->isVisible() && isVisible())
                row->show();
        }
        y += row->height();
    }
    resize(viewport.width(), qMax(viewport.height(), contentHeight));
    if (const QRect stillThere = visible & rect(); !stillThere.isEmpty())
        scrollRectToVisible(stillThere);
    update();
    if (m_delegate)
        m_delegate->selectionDidUpdateInCollectionView(*this);
}

void QVCustomControlCollectionView::updateContainerHeight(int contentHeight, bool adjustWindowHeight)
{
    if (!m_resizableContainerView)
        return;
    const int wanted = qBound(containerMinimumHeight, contentHeight + containerExtra, containerMaximumHeight);
    if (wanted == m_resizableContainerView->height() && m_resizableContainerView->minimumHeight() == wanted)
        return;
    // Its top edge stays where it is: the window grows or shrinks below.
    m_resizableContainerView->setFixedHeight(wanted);
    if (adjustWindowHeight && m_updateWindowFrame)
        m_updateWindowFrame();
}

void QVCustomControlCollectionView::beginTrackingRow(QVCustomControlConfigurationView &row, const QPoint &pointInList)
{
    m_rowDrag = std::make_unique<QVCustomControlRowDrag>(*this, row, pointInList);
    setFocus(Qt::MouseFocusReason);
}

void QVCustomControlCollectionView::endTrackingRow()
{
    // Ended from within its own event handling: it goes once that returns.
    if (m_rowDrag)
        m_rowDrag.release()->deleteLater();
}

void QVCustomControlCollectionView::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.fillRect(event->rect(), grey(0.95));
    if (configurationViews().isEmpty())
        drawEmptyListHint(painter, rect());
}

void QVCustomControlCollectionView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    selectConfigurationView(nullptr, Qt::NoModifier);
    setFocus(Qt::MouseFocusReason);
}

void QVCustomControlCollectionView::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
    } else if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) {
        if (m_delegate)
            m_delegate->deleteSelectedControls();
    } else if (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down) {
        moveSelection(event->key() == Qt::Key_Up ? -1 : 1, event->modifiers());
    }
    // Every other key ends here: typing in the list does nothing.
}

void QVCustomControlCollectionView::moveSelection(int step, Qt::KeyboardModifiers modifiers)
{
    const QList<QVCustomControlConfigurationView *> rows = configurationViews();
    if (rows.isEmpty())
        return;
    const QList<QVCustomControlConfigurationView *> selected = selectedConfigurationViews();
    qsizetype index = step < 0 ? rows.size() - 1 : 0;
    if (!selected.isEmpty())
        index
            = qBound<qsizetype>(0, rows.indexOf(step < 0 ? selected.first() : selected.last()) + step, rows.size() - 1);
    selectConfigurationView(rows[index], modifiers & Qt::ShiftModifier);
    scrollRectToVisible(rows[index]->geometry().adjusted(0, -contentPadding, 0, contentPadding));
}

void QVCustomControlCollectionView::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    for (QVCustomControlConfigurationView *row : selectedConfigurationViews())
        row->update();
}

void QVCustomControlCollectionView::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    for (QVCustomControlConfigurationView *row : selectedConfigurationViews())
        row->update();
}

bool QVCustomControlCollectionView::event(QEvent *event)
{
    if (event->type() == QEvent::WindowActivate || event->type() == QEvent::WindowDeactivate)
        update(); // the selection's colour follows the window
    return QWidget::event(event);
}
