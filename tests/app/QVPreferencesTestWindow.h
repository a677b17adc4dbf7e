#pragma once

#include "QVActionsPreferencesPage.h"
#include "QVCustomControlManager.h"
#include "QVFakeApplication.h"
#include "QVGeneralPreferencesPage.h"
#include "QVPreferencesWindow.h"
#include "QVUserDefaults.h"

#include <QCheckBox>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTemporaryDir>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <memory>

// The settings window with real General and Actions pages and a stand-in for the
// Updates page (shorter than General), over a settings file of its own.
struct QVPreferencesTestWindow {
    explicit QVPreferencesTestWindow(bool withUpdates = true, const QString &settingsPath = QString())
        : defaults(settingsPath.isEmpty() ? directory.filePath(QStringLiteral("settings.json")) : settingsPath)
        , manager(&defaults, &application, [this] { ++beeps; })
        , general(new QVGeneralPreferencesPage)
        , actions(new QVActionsPreferencesPage(manager, [this] { ++beeps; }))
        , updates(withUpdates ? newUpdatesPage() : nullptr)
        , window(std::make_unique<QVPreferencesWindow>(defaults, general, actions, updates))
    {
        application.hotKeysInUse = [this] {
            QList<QVHotKeyRef> hotKeys;
            for (const QVCustomControlRef &control : manager.controls())
                if (control->hotKey() && control->hotKey()->isRegistered())
                    hotKeys.append(control->hotKey());
            return hotKeys;
        };
        application.holderTitle = [this](const QVHotKey &hotKey) {
            for (const QVCustomControlRef &control : manager.controls())
                if (control->hotKey() && control->hotKey()->isEqualToHotKey(hotKey))
                    return control->displayTitleWithSuffixes(nullptr);
            return QString();
        };
        actions->setUpdatePreferencesWindowFrame([this] { window->updatePreferencesWindowFrame(); });
    }

    static QWidget *newUpdatesPage()
    {
        auto *page = new QWidget;
        page->setAccessibleName(QStringLiteral("Updates"));
        auto *layout = new QVBoxLayout(page);
        layout->setContentsMargins(20, 20, 20, 0);
        auto *check = new QCheckBox(QStringLiteral("Check automatically"), page);
        check->setAccessibleName(check->text());
        auto *button = new QPushButton(QStringLiteral("Check Now"), page);
        button->setAccessibleName(button->text());
        layout->addWidget(check);
        layout->addWidget(button, 0, Qt::AlignLeft);
        layout->addStretch(1);
        return page;
    }

    // Found by the names screen readers and style sheets see.
    QToolButton *button(const QString &identifier) const
    {
        return window->findChild<QToolButton *>(identifier + QStringLiteral("Button"));
    }
    QAction *item(const QString &identifier) const { return window->findChild<QAction *>(identifier); }
    QToolBar *toolbar() const { return window->findChild<QToolBar *>(); }
    QMenu *styleMenu() const { return window->findChild<QMenu *>(QStringLiteral("toolbarStyleMenu")); }

    QTemporaryDir directory;
    QVUserDefaults defaults;
    QVFakeApplication application;
    QVCustomControlManager manager;
    int beeps = 0;
    QVGeneralPreferencesPage *general;
    QVActionsPreferencesPage *actions;
    QWidget *updates;
    std::unique_ptr<QVPreferencesWindow> window;
};

// The bottom edge, in the window's coordinates, of the lowest child the page shows.
inline int lowestChildBottom(const QWidget &page, const QWidget &window)
{
    int lowest = 0;
    for (const QWidget *child : page.findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        if (child->isVisible())
            lowest = qMax(lowest, child->mapTo(&window, QPoint(0, child->height())).y());
    }
    return lowest;
}

// Visible widgets a screen reader could not name; Qt's own helpers (qt_...) aside.
inline QStringList widgetsWithoutAccessibleName(const QWidget &root)
{
    QStringList unnamed;
    for (const QWidget *widget : root.findChildren<QWidget *>()) {
        if (widget->isVisible() && widget->accessibleName().isEmpty()
            && !widget->objectName().startsWith(QLatin1String("qt_")))
            unnamed.append(
                QString::fromLatin1(widget->metaObject()->className()) + QLatin1Char(' ') + widget->objectName());
    }
    return unnamed;
}
