#pragma once

#include "QVCustomControlDirectionSelectorViewDelegate.h"
#include "QVCustomControlRepresentation.h"
#include "QVCustomControlRowControls.h"

#include <QRectF>
#include <QWidget>

class QVCustomControlCollectionView;

// One row of the editor: a rounded box with a header band, the control's icon and
// its controls. Changes in the controls go straight into the control; a press on
// the row itself selects it or drags it into another place.
class QVCustomControlConfigurationView final : public QWidget, public QVCustomControlDirectionSelectorViewDelegate
{
    Q_OBJECT

public:
    static constexpr int minimumHeight = 40;
    static constexpr int bottomMargin = 15;

    explicit QVCustomControlConfigurationView(const QVCustomControlRef &control, QWidget *parent = nullptr);

    const QVCustomControlRef &controlRepresentation() const { return m_control; }
    const QVCustomControlRowControls &controls() const { return m_controls; }
    // The list the row lies in, if any.
    QVCustomControlCollectionView *collectionView() const;

    bool selected() const { return m_selected; }
    void setSelected(bool selected);
    // The frame when a drag began, and the place the row is being dragged to (empty when it is not).
    QRectF moveOriginalFrame() const { return m_moveOriginalFrame; }
    void setMoveOriginalFrame(const QRectF &frame) { m_moveOriginalFrame = frame; }
    QRectF moveSortFrame() const { return m_moveSortFrame; }
    void setMoveSortFrame(const QRectF &frame);

    // The action of every control in the row.
    void changeSetting(QObject *sender);
    // Shows the controls of the action, collapsed or not; re-tiles the list when asked.
    void updateConfigurationView(qint64 action, bool tileCollectionView);
    // Fits the row's height to the controls it shows.
    void updateFrame();
    // The heading's title as typed; white space alone is no title.
    void controlTextDidChange();
    void directionSelectorViewDidChangeDirection(QVCustomControlDirectionSelectorView &selector) override;
    // Names for screen readers, which say which control each part belongs to.
    void updateAccessibleNames();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void connectControls();
    // What a desktop that binds keys itself is to run for this control.
    QString performCommand() const;
    // The action's detail box, made and connected when first needed.
    QWidget *makeDetailBox(qint64 action);
    void loadParameters(qint64 action);
    void showDetailBox(QWidget *box);
    void setCollapsedFromSwitch(bool applyToEveryRow);
    void controlDidChange();
    // Where a press counts as on the list rather than on the row.
    bool isInOuterMargin(const QPoint &point) const;

    QVCustomControlRef m_control;
    QVCustomControlRowControls m_controls;
    bool m_selected = false;
    QRectF m_moveOriginalFrame;
    QRectF m_moveSortFrame;
};
