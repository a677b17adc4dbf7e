#include "QVExpandSwitch.h"

#include <QStyleOption>
#include <QStylePainter>

QVExpandSwitch::QVExpandSwitch(QWidget *parent)
    : QToolButton(parent)
{
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
}

void QVExpandSwitch::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event);
    QStylePainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    option.rect = rect().adjusted(4, 4, -4, -4);
    if (isDown())
        option.palette.setColor(QPalette::ButtonText, option.palette.color(QPalette::Highlight));
    painter.drawPrimitive(isChecked() ? QStyle::PE_IndicatorArrowDown : QStyle::PE_IndicatorArrowRight, option);
    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
    }
}
