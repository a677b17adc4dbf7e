#include "QVTaskbarPresence.h"

#include "QVWindowService.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

QVTaskbarPresence::QVTaskbarPresence(QVWindowService &windows, std::function<bool()> listed, QObject *parent)
    : QObject(parent)
    , m_windows(windows)
    , m_listed(std::move(listed))
{
    qApp->installEventFilter(this);
}

bool QVTaskbarPresence::isTopLevelWindow(const QWidget &widget)
{
    const Qt::WindowType type = widget.windowType();
    return widget.isWindow() && (type == Qt::Window || type == Qt::Dialog);
}

void QVTaskbarPresence::apply()
{
    const bool listed = m_listed();
    for (QWidget *widget : QApplication::topLevelWidgets())
        if (widget->isVisible() && isTopLevelWindow(*widget))
            m_windows.setWindowListedInTaskbar(widget->winId(), listed);
}

bool QVTaskbarPresence::eventFilter(QObject *watched, QEvent *event)
{
    // Show arrives before the window maps; the window manager forgets a withdrawn window's state.
    if (event->type() == QEvent::Show && watched->isWidgetType()) {
        auto *widget = static_cast<QWidget *>(watched);
        if (isTopLevelWindow(*widget))
            m_windows.setWindowListedInTaskbar(widget->winId(), m_listed());
    }
    return QObject::eventFilter(watched, event);
}
