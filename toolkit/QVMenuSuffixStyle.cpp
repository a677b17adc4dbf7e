#include "QVMenuSuffixStyle.h"

#include "QVImageExtensions.h"
#include "QVMenuExtensions.h"

#include <QMenu>
#include <QPainter>
#include <QStyleOptionMenuItem>

namespace
{

// Wide enough for an action icon of 24 by 16 next to its title.
constexpr int menuIconExtent = 24;
// The grey of secondary text.
constexpr qreal suffixGrey = 0.57;
// Keeps an elided suffix clear of the submenu arrow and the border.
constexpr int suffixRightMargin = 12;

QImage renderedItem(const QStyle &style, const QStyleOptionMenuItem &option, const QWidget *widget)
{
    QImage image = transparentImage(option.rect.size(), 1.0);
    QPainter painter(&image);
    style.drawControl(QStyle::CE_MenuItem, &option, &painter, widget);
    return image;
}

// Where the title's ink ends, found by drawing the item with and without it: styles lay out the
// check mark, icon and text column each in their own way, and this asks none of them.
int titleInkRight(const QStyle &style, const QStyleOptionMenuItem &option, const QWidget *widget)
{
    QStyleOptionMenuItem probe = option;
    probe.rect.moveTo(0, 0);
    const QImage withTitle = renderedItem(style, probe, widget);
    probe.text.clear();
    const QImage withoutTitle = renderedItem(style, probe, widget);
    for (int x = withTitle.width() - 1; x >= 0; --x)
        for (int y = 0; y < withTitle.height(); ++y)
            if (withTitle.pixel(x, y) != withoutTitle.pixel(x, y))
                return option.rect.x() + x + 1;
    return option.rect.x();
}

QColor suffixColor(const QStyleOptionMenuItem &option)
{
    if (!(option.state & QStyle::State_Enabled))
        return option.palette.color(QPalette::Disabled, QPalette::Text);
    if (option.state & QStyle::State_Selected) {
        QColor color = option.palette.color(QPalette::HighlightedText);
        color.setAlphaF(0.7f);
        return color;
    }
    return QColor::fromRgbF(suffixGrey, suffixGrey, suffixGrey);
}

} // namespace

QVMenuSuffixStyle::QVMenuSuffixStyle(QStyle *baseStyle)
    : QProxyStyle(baseStyle)
{
}

void QVMenuSuffixStyle::install(QMenu &menu)
{
    auto *style = new QVMenuSuffixStyle;
    style->setParent(&menu);
    menu.setStyle(style);
}

void QVMenuSuffixStyle::drawControl(
    ControlElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const
{
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    const auto *menu = qobject_cast<const QMenu *>(widget);
    const QAction *action = (element == CE_MenuItem && item && menu) ? menu->actionAt(item->rect.center()) : nullptr;
    const QString suffix = action ? titleSuffix(*action) : QString();
    if (suffix.isEmpty()) {
        QProxyStyle::drawControl(element, option, painter, widget);
        return;
    }
    // The menu's text is title, suffix and, after a tab, the shortcut; the title goes to the style.
    const qsizetype tab = item->text.indexOf(QLatin1Char('\t'));
    QStyleOptionMenuItem titled = *item;
    titled.text = titleWithoutSuffix(*action);
    const int suffixLeft = titleInkRight(*baseStyle(), titled, widget);
    if (tab >= 0)
        titled.text += item->text.mid(tab);
    QProxyStyle::drawControl(element, &titled, painter, widget);

    const int right = item->rect.right() - item->reservedShortcutWidth - suffixRightMargin;
    const QRect suffixRect(suffixLeft, item->rect.y(), qMax(0, right - suffixLeft), item->rect.height());
    painter->save();
    painter->setFont(item->font);
    painter->setPen(suffixColor(*item));
    const QString shown = painter->fontMetrics().elidedText(suffix, Qt::ElideRight, suffixRect.width());
    painter->drawText(suffixRect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shown);
    painter->restore();
}

int QVMenuSuffixStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    if (metric == PM_SmallIconSize && qobject_cast<const QMenu *>(widget))
        return menuIconExtent;
    return QProxyStyle::pixelMetric(metric, option, widget);
}
