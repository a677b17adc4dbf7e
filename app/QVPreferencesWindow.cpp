#include "QVPreferencesWindow.h"

#include "QVDictionaryExtensions.h"
#include "QVResourcePaths.h"
#include "QVUserDefaults.h"
#include "QVWindowExtensions.h"

#include <QActionGroup>
#include <QCursor>
#include <QFile>
#include <QGuiApplication>
#include <QJsonObject>
#include <QMenu>
#include <QPropertyAnimation>
#include <QScreen>
#include <QStackedWidget>
#include <QToolBar>
#include <QToolButton>

namespace
{

const QString generalIdentifier = QStringLiteral("General");
const QString actionsIdentifier = QStringLiteral("Actions");
const QString updatesIdentifier = QStringLiteral("Updates");
const QString helpIdentifier = QStringLiteral("Help");
// Where the toolbar keeps its settings; a new key would forget the stored style.
const QString toolbarKey = QStringLiteral("Preferences (Independent) 0.1");
const QString displayModeKey = QStringLiteral("Display Mode");

// Wide enough for the General page's pop-up and its explanation at a normal font size.
constexpr int preferredWidth = 520;
constexpr int pageBottomMargin = 20;

// The theme's icon where the desktop has one, else the picture shipped with Corvane.
QIcon toolbarIcon(const QStringList &themeNames, const QString &bundledName)
{
    const QString bundledPath = QVIconResourcePath(bundledName);
    QIcon icon = QFile::exists(bundledPath) ? QIcon(bundledPath) : QIcon();
    for (auto name = themeNames.crbegin(); name != themeNames.crend(); ++name)
        icon = QIcon::fromTheme(*name, icon);
    return icon;
}

Qt::ToolButtonStyle styleForDisplayMode(QVPreferencesWindow::DisplayMode mode)
{
    switch (mode) {
    case QVPreferencesWindow::DisplayMode::IconOnly: return Qt::ToolButtonIconOnly;
    case QVPreferencesWindow::DisplayMode::TextOnly: return Qt::ToolButtonTextOnly;
    case QVPreferencesWindow::DisplayMode::IconAndText: break;
    }
    return Qt::ToolButtonTextUnderIcon;
}

} // namespace

QVPreferencesWindow::QVPreferencesWindow(
    QVUserDefaults &defaults, QWidget *generalPage, QWidget *actionsPage, QWidget *updatesPage, QWidget *parent)
    : QMainWindow(parent)
    , m_defaults(defaults)
    , m_toolbar(new QToolBar(this))
    , m_pages(new QStackedWidget(this))
    , m_pageItems(new QActionGroup(this))
{
    Q_ASSERT(generalPage && actionsPage);
    setObjectName(QStringLiteral("preferencesWindow"));
    setWindowTitle(tr("Corvane"));
    setAccessibleName(tr("Corvane Settings"));
    // The toolbar's own menu chooses its style; no menu to hide the toolbar.
    setContextMenuPolicy(Qt::NoContextMenu);

    m_pages->setObjectName(QStringLiteral("preferencesTabView"));
    m_pages->setAccessibleName(tr("Settings pages"));
    setCentralWidget(m_pages);

    addPage(generalIdentifier, generalPage, tr("General"), tr("General Settings"),
        toolbarIcon({ QStringLiteral("preferences-system") }, QStringLiteral("preferences-general")));
    addPage(actionsIdentifier, actionsPage, tr("Actions"), tr("Actions"),
        toolbarIcon({ QStringLiteral("preferences-desktop-keyboard-shortcuts"), QStringLiteral("preferences-other") },
            QStringLiteral("preferences-actions")));
    if (updatesPage) {
        addPage(updatesIdentifier, updatesPage, tr("Updates"), tr("Updates"),
            toolbarIcon({ QStringLiteral("system-software-update") }, QStringLiteral("preferences-updates")));
    }
    buildToolbar();
    buildToolbarStyleMenu();
    setDisplayMode(displayMode());
    selectPage(generalIdentifier);

    const int width = qMax(preferredWidth, minimumSizeHint().width());
    setMinimumWidth(width);
    setMaximumWidth(width);
    resize(width, height());
}

void QVPreferencesWindow::addPage(
    const QString &identifier, QWidget *page, const QString &label, const QString &toolTip, const QIcon &icon)
{
    m_pages->addWidget(page);
    auto *item = new QAction(icon, label, m_pageItems);
    item->setObjectName(identifier);
    item->setData(identifier);
    item->setToolTip(toolTip);
    item->setCheckable(true);
}

void QVPreferencesWindow::buildToolbar()
{
    m_toolbar->setObjectName(QStringLiteral("preferencesToolbar"));
    m_toolbar->setAccessibleName(tr("Settings toolbar"));
    m_toolbar->setMovable(false);
    m_toolbar->setFloatable(false);
    m_toolbar->toggleViewAction()->setVisible(false);
    m_toolbar->setContextMenuPolicy(Qt::CustomContextMenu);
    addToolBar(Qt::TopToolBarArea, m_toolbar);

    m_pageItems->setExclusive(true);
    m_toolbar->addActions(m_pageItems->actions());
    connect(m_pageItems, &QActionGroup::triggered, this,
        [this](QAction *item) { showPreferencesTab(item->data().toString()); });

    auto *flexibleSpace = new QWidget(m_toolbar);
    flexibleSpace->setObjectName(QStringLiteral("flexibleSpace"));
    flexibleSpace->setAccessibleName(tr("Space"));
    flexibleSpace->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_toolbar->addWidget(flexibleSpace);

    auto *helpItem = new QAction(
        toolbarIcon({ QStringLiteral("help-browser") }, QStringLiteral("preferences-help")), tr("Help"), this);
    helpItem->setObjectName(helpIdentifier);
    helpItem->setToolTip(tr("Help"));
    m_toolbar->addAction(helpItem);
    connect(helpItem, &QAction::triggered, this, &QVPreferencesWindow::helpRequested);

    for (QAction *item : m_toolbar->actions()) {
        if (QWidget *button = m_toolbar->widgetForAction(item); qobject_cast<QToolButton *>(button)) {
            button->setObjectName(item->objectName() + QStringLiteral("Button"));
            button->setAccessibleName(item->text());
        }
    }
}

void QVPreferencesWindow::buildToolbarStyleMenu()
{
    auto *menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("toolbarStyleMenu"));
    menu->setAccessibleName(tr("Toolbar style"));
    m_displayModeItems = new QActionGroup(menu);
    const QList<QPair<DisplayMode, QString>> modes { { DisplayMode::IconAndText, tr("Icon and Text") },
        { DisplayMode::IconOnly, tr("Icon Only") }, { DisplayMode::TextOnly, tr("Text Only") } };
    for (const auto &[mode, title] : modes) {
        QAction *item = menu->addAction(title);
        item->setCheckable(true);
        item->setData(int(mode));
        m_displayModeItems->addAction(item);
    }
    connect(m_displayModeItems, &QActionGroup::triggered, this, [this](QAction *item) {
        const auto mode = DisplayMode(item->data().toInt());
        storeDisplayMode(mode);
        setDisplayMode(mode);
    });
    connect(m_toolbar, &QWidget::customContextMenuRequested, this,
        [this, menu](const QPoint &position) { menu->popup(m_toolbar->mapToGlobal(position)); });
}

QVPreferencesWindow::DisplayMode QVPreferencesWindow::displayMode() const
{
    const qint64 stored = QVIntegerForKey(m_defaults.objectForKey(toolbarKey).toObject(), displayModeKey);
    if (stored == int(DisplayMode::IconOnly) || stored == int(DisplayMode::TextOnly))
        return DisplayMode(stored);
    return DisplayMode::IconAndText;
}

void QVPreferencesWindow::storeDisplayMode(DisplayMode mode)
{
    // Other keys of the toolbar's configuration, if any, are kept.
    QJsonObject configuration = m_defaults.objectForKey(toolbarKey).toObject();
    configuration.insert(displayModeKey, int(mode));
    m_defaults.setObject(configuration, toolbarKey);
}

void QVPreferencesWindow::setDisplayMode(DisplayMode mode)
{
    for (QAction *item : m_displayModeItems->actions())
        item->setChecked(item->data().toInt() == int(mode));
    m_toolbar->setToolButtonStyle(styleForDisplayMode(mode));
    if (isVisible())
        updatePreferencesWindowFrame();
}

QString QVPreferencesWindow::selectedIdentifier() const
{
    const QAction *item = m_pageItems->actions().value(m_pages->currentIndex());
    return item ? item->data().toString() : QString();
}

void QVPreferencesWindow::selectPage(const QString &identifier)
{
    const QList<QAction *> items = m_pageItems->actions();
    for (int index = 0; index < items.size(); ++index) {
        if (items[index]->data().toString() != identifier)
            continue;
        m_pages->setCurrentIndex(index);
        items[index]->setChecked(true);
        return;
    }
}

void QVPreferencesWindow::showPreferencesTab(const QString &identifier)
{
    // The constructor selected "General": a null identifier on the first showing keeps it.
    if (!identifier.isNull())
        selectPage(identifier);
    updatePreferencesWindowFrame();

    if (!isVisible())
        centerOnScreenUnderPointer();
    show();
    raise();
    activateWindow();
}

void QVPreferencesWindow::updatePreferencesWindowFrame()
{
    QWidget *page = m_pages->currentWidget();
    if (!page)
        return;
    const int bottomMargin = selectedIdentifier() == actionsIdentifier ? 0 : pageBottomMargin;
    // Only a page change resizes the window; the constraints are lifted while it does.
    // (The Actions page may later let the user make the list taller.)
    setMinimumHeight(1);
    setMaximumHeight(QWIDGETSIZE_MAX);
    if (QPropertyAnimation *animation = adjustHeightToFitSubviewsOfView(*this, *page, bottomMargin, true))
        connect(animation, &QPropertyAnimation::finished, this, &QVPreferencesWindow::fixHeight);
    else
        fixHeight();
}

void QVPreferencesWindow::fixHeight()
{
    setMinimumHeight(height());
    setMaximumHeight(height());
}

void QVPreferencesWindow::centerOnScreenUnderPointer()
{
    QScreen *screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    QRect frame = frameGeometry();
    frame.moveCenter(screen->availableGeometry().center());
    move(frame.topLeft());
}
