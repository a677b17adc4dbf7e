#include "QVStatusItem.h"

#include "QVLog.h"
#include "QVMenuSuffixStyle.h"
#include "QVResourcePaths.h"

#include <QCursor>
#include <QGuiApplication>
#include <QIcon>
#include <QMenu>
#include <QSystemTrayIcon>

namespace
{
// A panel that never says the menu closed still gets a fresh menu on the next opening.
constexpr qint64 longestOpeningMs = 1500;
} // namespace

QVStatusItem::QVStatusItem(Populate populate, QObject *parent)
    : QObject(parent)
    , m_populate(std::move(populate))
{
}

QVStatusItem::~QVStatusItem()
{
    // The icon goes before the menu it refers to.
    m_trayIcon.reset();
}

void QVStatusItem::create()
{
    m_menu = std::make_unique<QMenu>();
    m_menu->setTitle(tr("Corvane Status Item"));
    m_menu->setAccessibleName(tr("Corvane"));
    QVMenuSuffixStyle::install(*m_menu);
    connect(m_menu.get(), &QMenu::aboutToShow, this, &QVStatusItem::menuNeedsUpdate);
    connect(m_menu.get(), &QMenu::aboutToHide, this, &QVStatusItem::menuDidClose);

    m_trayIcon = std::make_unique<QSystemTrayIcon>(QIcon(QVIconResourcePath(QStringLiteral("corvane-tray"))));
    m_trayIcon->setToolTip(tr("Corvane"));
    m_trayIcon->setContextMenu(m_menu.get());
    // A left click opens the same menu where the panel leaves that to the application.
    connect(m_trayIcon.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger && !m_menu->isVisible())
            m_menu->popup(QCursor::pos());
    });
    rebuild(); // a panel may read the menu before it ever opens it
}

void QVStatusItem::setInstalled(bool installed)
{
    if (installed == m_installed)
        return;
    m_installed = installed;
    if (!installed) {
        if (m_trayIcon)
            m_trayIcon->hide();
        return;
    }
    if (!m_trayIcon)
        create();
    if (!QSystemTrayIcon::isSystemTrayAvailable())
        QVLog(QStringLiteral("no system tray to show the icon in; it appears when one starts. Until then, launch "
                             "Corvane again to open its settings"));
    m_trayIcon->show();
}

void QVStatusItem::menuNeedsUpdate()
{
    if (!m_menu)
        return;
    if (m_builtForThisOpening && m_sinceLastBuild.isValid() && m_sinceLastBuild.elapsed() < longestOpeningMs)
        return;
    m_builtForThisOpening = true;
    m_sinceLastBuild.start();
    rebuild();
}

void QVStatusItem::rebuild()
{
    const Qt::KeyboardModifiers held = QGuiApplication::queryKeyboardModifiers();
    const bool alternate = held.testFlag(Qt::ControlModifier) && held.testFlag(Qt::AltModifier);
    m_menu->clear();
    m_populate(*m_menu, alternate);
}

void QVStatusItem::menuDidClose()
{
    m_builtForThisOpening = false;
}
