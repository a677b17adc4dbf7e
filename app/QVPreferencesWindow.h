#pragma once

#include <QMainWindow>
#include <QPointer>

class QAction;
class QActionGroup;
class QMenu;
class QScrollArea;
class QStackedWidget;
class QToolBar;
class QVUserDefaults;

// The settings window: a toolbar chooses among the pages "General", "Actions"
// and (when the build checks for updates) "Updates"; "Help" sits at the far
// right and asks for the help page instead. The window fits its height to the
// page shown.
class QVPreferencesWindow final : public QMainWindow
{
    Q_OBJECT

public:
    // How the toolbar shows its items, as stored under the toolbar's settings key.
    enum class DisplayMode { IconAndText = 1, IconOnly = 2, TextOnly = 3 };

    // A null updates page leaves the "Updates" item out.
    QVPreferencesWindow(QVUserDefaults &defaults, QWidget *generalPage, QWidget *actionsPage, QWidget *updatesPage,
        QWidget *parent = nullptr);

    // Shows the page with that identifier (null: the current page; "General" on the
    // first showing) and brings the window to the front. An unknown identifier
    // leaves the page as it is.
    void showPreferencesTab(const QString &identifier);
    // The action of a toolbar item: its page.
    void changePreferencesTab(QAction *item);
    // Fits the window's height to the current page.
    void updatePreferencesWindowFrame();

    QString selectedIdentifier() const;
    bool isFirstShowing() const { return m_isFirstShowing; }

    QToolBar *toolbar() const { return m_toolbar; }
    QAction *toolbarItem(const QString &identifier) const;
    QMenu *toolbarStyleMenu() const { return m_toolbarStyleMenu; }
    DisplayMode displayMode() const;

    static QString toolbarIdentifier();

Q_SIGNALS:
    void helpRequested();

private:
    void addPage(
        const QString &identifier, QWidget *page, const QString &label, const QString &toolTip, const QIcon &icon);
    void buildToolbar();
    void buildToolbarStyleMenu();
    void setDisplayMode(DisplayMode mode);
    void storeDisplayMode(DisplayMode mode);
    void selectPage(const QString &identifier);
    void fixHeight();
    QScrollArea *collectionView() const;
    QRect collectionViewVisibleRect() const;
    void restoreVisibleRect(const QRect &visibleRect);
    void centerOnScreenUnderPointer();

    QVUserDefaults &m_defaults;
    QToolBar *m_toolbar;
    QStackedWidget *m_pages;
    QActionGroup *m_pageItems;
    QAction *m_helpItem = nullptr;
    QMenu *m_toolbarStyleMenu = nullptr;
    QActionGroup *m_displayModeItems = nullptr;
    QPointer<QWidget> m_actionsPage;
    bool m_isFirstShowing = true;
};
