#pragma once

#include <QMainWindow>

class QActionGroup;
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

    // Shows the page with that identifier (null: the current page, "General" until
    // another was shown) and brings the window to the front. An unknown identifier
    // leaves the page as it is.
    void showPreferencesTab(const QString &identifier);
    // Fits the window's height to the current page.
    void updatePreferencesWindowFrame();

    QString selectedIdentifier() const;

Q_SIGNALS:
    void helpRequested();

private:
    void addPage(
        const QString &identifier, QWidget *page, const QString &label, const QString &toolTip, const QIcon &icon);
    void buildToolbar();
    void buildToolbarStyleMenu();
    DisplayMode displayMode() const;
    void setDisplayMode(DisplayMode mode);
    void storeDisplayMode(DisplayMode mode);
    void selectPage(const QString &identifier);
    void fixHeight();
    void centerOnScreenUnderPointer();

    QVUserDefaults &m_defaults;
    QToolBar *m_toolbar;
    QStackedWidget *m_pages;
    QActionGroup *m_pageItems;
    QActionGroup *m_displayModeItems = nullptr;
};
