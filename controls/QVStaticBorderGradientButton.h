#pragma once

#include <QPushButton>

// A flat button with a grey outline, for the small add and remove buttons under a list.
class QVStaticBorderGradientButton final : public QPushButton
{
    Q_OBJECT

public:
    explicit QVStaticBorderGradientButton(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};
