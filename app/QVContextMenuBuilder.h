#pragma once

#include <QCoreApplication>
#include <QKeySequence>

#include <functional>

class QAction;
class QMenu;
class QVCustomControlManager;
class QVHotKey;
class QVUserDefaults;

// Fills a menu with Corvane's own items and one item per custom control, in list
// order: the tray menu, and any other place that offers the controls.
class QVContextMenuBuilder final
{
    Q_DECLARE_TR_FUNCTIONS(QVContextMenuBuilder)

public:
    // What the items do. Without checkForUpdates (a build without update checks) that item is left out.
    struct Targets {
        std::function<void()> showAbout;
        std::function<void()> checkForUpdates;
        std::function<void()> showHelp;
        std::function<void()> showPreferences;
        std::function<void()> toggleDebugLogging;
        std::function<void()> terminate;
        std::function<void(QAction *item)> performCustomControlActionForMenuItem;
    };

    QVContextMenuBuilder(const QVUserDefaults &defaults, const QVCustomControlManager &manager, Targets targets);

    // alternate: the user held Control and Alt as the menu opened, so the debug
    // logging switch stands where "Settings" is.
    void populateContextMenu(QMenu &menu, bool alternate) const;

    // The hot key as a menu shortcut, when its key's label is one character; else empty.
    static QKeySequence keyEquivalentForHotKey(const QVHotKey &hotKey);

private:
    void addLeadingMetaItems(QMenu &menu) const;
    void addCustomControlItems(QMenu &menu) const;
    void addTrailingMetaItems(QMenu &menu, bool alternate) const;
    QAction *addItem(QMenu &menu, const QString &title, const std::function<void()> &target) const;

    const QVUserDefaults &m_defaults;
    const QVCustomControlManager &m_manager;
    Targets m_targets;
};
