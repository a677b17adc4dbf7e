#pragma once

#include <QString>

class QAction;
class QMenu;

// A disabled item without action, its title in the smaller font used for headings.
QAction *addNonActionItemWithSmallTitle(QMenu &menu, const QString &title);

// A separator, unless the menu is empty or already ends in one; the new separator or nullptr.
QAction *addSeparatorIfNecessary(QMenu &menu);

// The item's text becomes title followed by suffix, so that exported menus and screen readers get
// the whole of it; menus drawn with QVMenuSuffixStyle show the suffix in grey. An empty suffix
// leaves the plain title.
void setTitle(QAction &action, const QString &title, const QString &suffix);
// Replaces the suffix and keeps the title.
void setTitleSuffix(QAction &action, const QString &suffix);
// The title without its suffix, and the suffix alone (empty when there is none).
QString titleWithoutSuffix(const QAction &action);
QString titleSuffix(const QAction &action);
