#include "QVMenuExtensions.h"

#include <QAction>
#include <QMenu>

namespace
{

const char *const titleProperty = "QVMenuTitle";
const char *const suffixProperty = "QVMenuTitleSuffix";

// The small control font is 11 points beside the 13 of a normal menu item.
constexpr qreal smallFontRatio = 11.0 / 13.0;

// The stored title and suffix, unless the text was set since by other means.
bool storedParts(const QAction &action, QString *title, QString *suffix)
{
    const QVariant storedTitle = action.property(titleProperty);
    if (!storedTitle.isValid())
        return false;
    *title = storedTitle.toString();
    *suffix = action.property(suffixProperty).toString();
    return action.text() == *title + *suffix;
}

} // namespace

QAction *addNonActionItemWithSmallTitle(QMenu &menu, const QString &title)
{
    QAction *item = menu.addAction(title);
    item->setEnabled(false);
    QFont font = menu.font();
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * smallFontRatio);
    else
        font.setPixelSize(qRound(font.pixelSize() * smallFontRatio));
    item->setFont(font);
    return item;
}

QAction *addSeparatorIfNecessary(QMenu &menu)
{
    const QList<QAction *> items = menu.actions();
    if (items.isEmpty() || items.constLast()->isSeparator())
        return nullptr;
    return menu.addSeparator();
}

void setTitle(QAction &action, const QString &title, const QString &suffix)
{
    action.setProperty(titleProperty, title);
    action.setProperty(suffixProperty, suffix);
    action.setText(title + suffix);
}

void setTitleSuffix(QAction &action, const QString &suffix)
{
    setTitle(action, titleWithoutSuffix(action), suffix);
}

QString titleWithoutSuffix(const QAction &action)
{
    QString title, suffix;
    return storedParts(action, &title, &suffix) ? title : action.text();
}

QString titleSuffix(const QAction &action)
{
    QString title, suffix;
    return storedParts(action, &title, &suffix) ? suffix : QString();
}
