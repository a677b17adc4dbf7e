#include "QVCustomControlRowDrag.h"

#include "QVCustomControlCollectionView.h"
#include "QVCustomControlCollectionViewDelegate.h"
#include "QVCustomControlConfigurationView.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace
{

// Hand tremor is no drag: a press moves the row only once the pointer went this far.
constexpr int dragThreshold = 3;
// Offsets this small leave the rows where they are.
constexpr qreal offsetThreshold = 0.9;

} // namespace

QVCustomControlRowDrag::QVCustomControlRowDrag(
    QVCustomControlCollectionView &list, QVCustomControlConfigurationView &row, const QPoint &pressInList)
    : m_list(list)
    , m_row(&row)
    , m_press(pressInList)
    , m_pointer(list.mapToGlobal(pressInList))
    , m_originalOrder(list.configurationViews())
{
    m_possible = row.parentWidget() == &list && m_originalOrder.size() >= 2;
    m_autoScrollTimer.setSingleShot(false);
    connect(&m_autoScrollTimer, &QTimer::timeout, this, &QVCustomControlRowDrag::autoScroll);
    QCoreApplication::instance()->installEventFilter(this);
}

QVCustomControlRowDrag::~QVCustomControlRowDrag()
{
    if (QCoreApplication *application = QCoreApplication::instance())
        application->removeEventFilter(this);
}

bool QVCustomControlRowDrag::eventFilter(QObject *watched, QEvent *event)
{
    Q_UNUSED(watched);
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride)
        return false;
    if (event->type() == QEvent::KeyPress) {
        cancel();
        m_list.endTrackingRow();
    }
    return true; // the key only ends the drag
}

void QVCustomControlRowDrag::dragTo(const QPoint &globalPoint)
{
    m_pointer = globalPoint;
    if (!m_possible || !m_row)
        return;
    if (!m_started) {
        if ((m_list.mapFromGlobal(globalPoint) - m_press).manhattanLength() < dragThreshold)
            return;
        start();
    }
    if (m_dragged.isEmpty())
        return;
    updateAutoScroll();
    moveDraggedRows();
}

void QVCustomControlRowDrag::start()
{
    m_started = true;
    const QList<QVCustomControlConfigurationView *> rows = m_list.configurationViews();
    QList<QVCustomControlConfigurationView *> dragged
        = m_row->selected() ? m_list.selectedConfigurationViews() : QList { m_row.data() };
    if (dragged.size() >= rows.size())
        return; // every row at once has nowhere to go
    std::sort(dragged.begin(), dragged.end(), [](const auto *a, const auto *b) { return a->y() < b->y(); });
    m_dragged = dragged;
    for (QVCustomControlConfigurationView *row : m_dragged) {
        row->raise();
        row->setMoveSortFrame(QRectF(row->geometry()));
    }
    if (m_list.configurationViewsInScreenOrder() != rows) {
        m_list.delegate()->sortControlsByViewYCoordinatesInCollectionView(m_list);
        m_list.tileConfigurationViews(true, false);
    }
    for (QVCustomControlConfigurationView *row : m_dragged)
        row->setMoveOriginalFrame(QRectF(row->geometry()));
}

void QVCustomControlRowDrag::moveDraggedRows()
{
    const QVCustomControlConfigurationView *first = m_dragged.constFirst();
    qreal total = 0;
    for (const QVCustomControlConfigurationView *row : m_dragged)
        total += row->height();
    const qreal originalTop = first->moveOriginalFrame().y();
    const qreal wantedTop = originalTop + (m_list.mapFromGlobal(m_pointer).y() - m_press.y());
    // The first row stops at the list's top, the last at its bottom.
    const qreal top = qBound(0.0, wantedTop, qMax(0.0, m_list.height() - total));
    if (qAbs(top - originalTop) <= offsetThreshold && first->geometry().y() == int(originalTop))
        return;

    QRectF together;
    int y = qRound(top);
    for (QVCustomControlConfigurationView *row : m_dragged) {
        row->move(row->x(), y);
        together |= QRectF(row->geometry());
        y += row->height();
    }
    for (QVCustomControlConfigurationView *row : m_dragged)
        row->setMoveSortFrame(together);
    reorderIfNeeded();
    m_list.update();
}

void QVCustomControlRowDrag::reorderIfNeeded()
{
    const QList<QVCustomControlConfigurationView *> rows = m_list.configurationViews();
    if (m_list.configurationViewsInScreenOrder() == rows)
        return;
    m_list.delegate()->sortControlsByViewYCoordinatesInCollectionView(m_list);
    m_list.tileConfigurationViews(false, false);
}

void QVCustomControlRowDrag::updateAutoScroll()
{
    const QRect visible = m_list.visibleRect().adjusted(0, autoScrollMargin, 0, -autoScrollMargin);
    const int y = m_list.mapFromGlobal(m_pointer).y();
    const bool outside = y < visible.top() || y > visible.bottom();
    if (!outside)
        m_autoScrollTimer.stop();
    else if (!m_autoScrollTimer.isActive())
        m_autoScrollTimer.start(autoScrollFirstDelayMs);
}

void QVCustomControlRowDrag::autoScroll()
{
    m_started = true;
    m_autoScrollTimer.setInterval(autoScrollIntervalMs);
    const QRect visible = m_list.visibleRect();
    const int y = m_list.mapFromGlobal(m_pointer).y();
    const int step = y >= visible.center().y() ? autoScrollStep : -autoScrollStep;
    m_list.scrollRectToVisible(visible.translated(0, step));
    if (!m_dragged.isEmpty())
        moveDraggedRows();
    updateAutoScroll();
}

void QVCustomControlRowDrag::finish(Qt::KeyboardModifiers modifiers)
{
    m_autoScrollTimer.stop();
    if (!m_started) {
        if (m_row) {
            m_list.selectConfigurationView(m_row, modifiers);
            m_list.setFocus(Qt::MouseFocusReason);
            m_row->update();
        }
        return;
    }
    end();
}

void QVCustomControlRowDrag::cancel()
{
    m_autoScrollTimer.stop();
    if (m_list.configurationViews() != m_originalOrder)
        m_list.delegate()->sortControlsByViewIndexInArray(m_originalOrder);
    end();
}

void QVCustomControlRowDrag::end()
{
    for (QVCustomControlConfigurationView *row : std::as_const(m_dragged))
        row->setMoveSortFrame(QRectF());
    m_dragged.clear();
    m_list.tileConfigurationViews(true, false);
    if (m_list.configurationViews() != m_originalOrder)
        m_list.delegate()->controlDidChange();
}
