#pragma once

#include <QWidget>

class QPainter;

// A plain box: a faint outline around an almost white, slightly translucent fill.
// Square corners here; subclasses round them by answering another corner radius.
class QVCustomControlBorderView : public QWidget
{
    Q_OBJECT

public:
    explicit QVCustomControlBorderView(QWidget *parent = nullptr);

    // Below 1 the corners are square.
    virtual qreal cornerRadius() const { return -1; }
    static void drawBorderViewInBounds(QPainter &painter, const QRectF &bounds, qreal cornerRadius);

protected:
    void paintEvent(QPaintEvent *event) override;
};
