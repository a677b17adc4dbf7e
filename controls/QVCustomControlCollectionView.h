#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>

class QScrollArea;
class QVCustomControlCollectionViewDelegate;
class QVCustomControlConfigurationView;
class QVCustomControlRowDrag;

// The scrolling list of the editor: the rows of the custom controls one below the
// other, a hint when there are none. It selects rows, deletes the selection on
// Delete and Backspace, and lets rows be dragged into another order. Its container
// grows with it up to a limit, after which it scrolls.
class QVCustomControlCollectionView final : public QWidget
{
    Q_OBJECT

public:
    static constexpr int rowMarginX = 10; // clicks this close to a row's sides land on the list
    static constexpr int rowMarginY = 5;

    explicit QVCustomControlCollectionView(QWidget *parent = nullptr);
    ~QVCustomControlCollectionView() override;

    QVCustomControlCollectionViewDelegate *delegate() const { return m_delegate; }
    void setDelegate(QVCustomControlCollectionViewDelegate *delegate) { m_delegate = delegate; }
    // Its height follows the list: the content and 42 more, from 102 to 550.
    QWidget *resizableContainerView() const { return m_resizableContainerView; }
    void setResizableContainerView(QWidget *container) { m_resizableContainerView = container; }
    // Asked after the container changed height, so the window can follow.
    void setUpdatePreferencesWindowFrame(std::function<void()> update) { m_updateWindowFrame = std::move(update); }

    // Click rules: with Control one row toggles; with Shift the selection grows from
    // the nearest selected row to this one; otherwise this row alone (none: no row).
    void selectConfigurationView(QVCustomControlConfigurationView *row, Qt::KeyboardModifiers modifiers);
    // Selected rows in list order.
    QList<QVCustomControlConfigurationView *> selectedConfigurationViews() const;
    void selectAll();

    // Lays the rows out one below the other, resizes the list and its container.
    // Rows being dragged keep their place unless includingMovingViews.
    void tileConfigurationViews(bool includingMovingViews, bool adjustWindowHeight);
    // The rows in list order, as the delegate keeps them.
    QList<QVCustomControlConfigurationView *> configurationViews() const;
    // The rows in the order they stand on screen, dragged ones where they are being dragged to.
    QList<QVCustomControlConfigurationView *> configurationViewsInScreenOrder() const;
    QScrollArea *enclosingScrollArea() const;
    // The part of the list the scroll area shows.
    QRect visibleRect() const;
    void scrollRectToVisible(const QRect &rect);

    // Whether the selection shows in the accent colour: the window is active and the list has the focus.
    bool showsActiveSelection() const;

    // A press on a row: selecting or dragging follows as the pointer moves and lets go.
    void beginTrackingRow(QVCustomControlConfigurationView &row, const QPoint &pointInList);
    QVCustomControlRowDrag *rowDrag() const { return m_rowDrag.get(); }
    void endTrackingRow();

Q_SIGNALS:
    // A recorded combination was turned down; the message says who holds it.
    void hotKeyRefused(const QString &message);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    bool event(QEvent *event) override;

private:
    void moveSelection(int step, Qt::KeyboardModifiers modifiers);
    void updateContainerHeight(int contentHeight, bool adjustWindowHeight);

    QVCustomControlCollectionViewDelegate *m_delegate = nullptr;
    QPointer<QWidget> m_resizableContainerView;
    std::function<void()> m_updateWindowFrame;
    std::unique_ptr<QVCustomControlRowDrag> m_rowDrag;
};
