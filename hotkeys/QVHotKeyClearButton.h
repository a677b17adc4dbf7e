#pragma once

#include <QAbstractButton>

// The small round button beside a hot key field that clears it. It draws one of
// three pictures: pressed, enabled, or disabled (no hot key to clear).
class QVHotKeyClearButton final : public QAbstractButton
{
    Q_OBJECT

public:
    explicit QVHotKeyClearButton(QWidget *parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
