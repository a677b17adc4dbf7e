#pragma once

#include <QToolButton>

// A bare disclosure triangle: pointing down while on (details shown), right while off.
class QVExpandSwitch final : public QToolButton
{
    Q_OBJECT

public:
    explicit QVExpandSwitch(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};
