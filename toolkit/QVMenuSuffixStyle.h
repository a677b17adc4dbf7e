#pragma once

#include <QProxyStyle>

class QMenu;

// The look of Corvane's menus: an item titled with setTitle(action, title, suffix) shows its
// title as usual and the suffix after it in grey, and the icon column is wide enough for the
// 24 by 16 action icons.
class QVMenuSuffixStyle final : public QProxyStyle
{
    Q_OBJECT

public:
    explicit QVMenuSuffixStyle(QStyle *baseStyle = nullptr);

    // Gives the menu a style of this kind that goes away with it.
    static void install(QMenu &menu);

    void drawControl(
        ControlElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
};
