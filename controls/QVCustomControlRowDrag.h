#pragma once

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QTimer>

class QVCustomControlCollectionView;
class QVCustomControlConfigurationView;

// One press on a row, followed until the button goes up or a key is pressed. A
// press that does not move selects; one that moves drags the row (the selection,
// when the row is part of it) into another place, the other rows making room as
// it goes. Near the top or bottom edge the list scrolls. A key puts the order back.
class QVCustomControlRowDrag final : public QObject
{
    Q_OBJECT

public:
    // How close to the visible part's edges the pointer scrolls the list.
    static constexpr int autoScrollMargin = 20;
    static constexpr int autoScrollStep = 15;
    static constexpr int autoScrollFirstDelayMs = 100;
    static constexpr int autoScrollIntervalMs = 20;

    QVCustomControlRowDrag(
        QVCustomControlCollectionView &list, QVCustomControlConfigurationView &row, const QPoint &pressInList);
    ~QVCustomControlRowDrag() override;

    // The pointer moved, in global coordinates.
    void dragTo(const QPoint &globalPoint);
    // The button went up; with no movement at all the press selects the row.
    void finish(Qt::KeyboardModifiers modifiers);
    // A key was pressed: the drag ends and the order it changed is put back.
    void cancel();

    bool isDragging() const { return m_started && !m_dragged.isEmpty(); }
    const QList<QVCustomControlConfigurationView *> &draggedRows() const { return m_dragged; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void start();
    void moveDraggedRows();
    void updateAutoScroll();
    void autoScroll();
    void reorderIfNeeded();
    void end();

    QVCustomControlCollectionView &m_list;
    QPointer<QVCustomControlConfigurationView> m_row;
    QPoint m_press; // in the list
    QPoint m_pointer; // global
    QList<QVCustomControlConfigurationView *> m_originalOrder;
    QList<QVCustomControlConfigurationView *> m_dragged;
    bool m_possible = false;
    bool m_started = false; // a drag or scroll event came
    bool m_orderChanged = false;
    QTimer m_autoScrollTimer;
};
