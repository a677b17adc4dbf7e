#pragma once

#include <QColor>
#include <QLinearGradient>
#include <QPushButton>

#include <optional>

// A push button whose bezel is darkened by a colour and/or overlaid with a
// gradient, inside a capsule over the bezel. Without either it is a plain button.
class QVTintedButton : public QPushButton
{
    Q_OBJECT

public:
    explicit QVTintedButton(QWidget *parent = nullptr);
    QVTintedButton(const QString &text, QWidget *parent = nullptr);

    virtual std::optional<QColor> tintColor() const { return m_tintColor; }
    void setTintColor(const std::optional<QColor> &color);
    // Drawn from the bottom of the bezel to its top (stops 0 to 1).
    std::optional<QGradientStops> tintGradient() const { return m_tintGradient; }
    void setTintGradient(const std::optional<QGradientStops> &gradient);

    // Darkens what lies under the capsule in rect by the colour, then lays the gradient over it.
    static void tintButton(QPainter &painter, const std::optional<QColor> &color,
        const std::optional<QGradientStops> &gradient, const QRectF &rect);

protected:
    void paintEvent(QPaintEvent *event) override;
    // The rectangle of the bezel the style draws, inside the button's bounds.
    QRectF bezelRect() const;

private:
    std::optional<QColor> m_tintColor;
    std::optional<QGradientStops> m_tintGradient;
};
