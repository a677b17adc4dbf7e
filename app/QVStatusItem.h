#pragma once

#include <QElapsedTimer>
#include <QObject>

#include <functional>
#include <memory>

class QMenu;
class QSystemTrayIcon;

// Corvane's icon in the system tray with its menu. Both are made once and kept:
// panels lose track of a tray icon or menu that is made again. The menu is
// rebuilt in place each time it opens, from the current list of controls.
class QVStatusItem final : public QObject
{
    Q_OBJECT

public:
    // Fills the emptied menu; alternate tells that Control and Alt were held.
    using Populate = std::function<void(QMenu &menu, bool alternate)>;

    explicit QVStatusItem(Populate populate, QObject *parent = nullptr);
    ~QVStatusItem() override;

    void setInstalled(bool installed);
    // Rebuilds the menu, once per opening: a panel may ask several times as it opens.
    void menuNeedsUpdate();

private:
    void create();
    void rebuild();
    void menuDidClose();

    Populate m_populate;
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<QSystemTrayIcon> m_trayIcon;
    bool m_installed = false;
    bool m_builtForThisOpening = false;
    QElapsedTimer m_sinceLastBuild;
};
