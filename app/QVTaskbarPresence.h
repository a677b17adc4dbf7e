#pragma once

#include <QObject>

#include <functional>

class QVWindowService;
class QWidget;

// Keeps Corvane's windows in the task bar and pager, or out of them, as the
// presentation mode says. Watches the whole application: every window that
// shows gets the hint before it maps.
class QVTaskbarPresence final : public QObject
{
    Q_OBJECT

public:
    QVTaskbarPresence(QVWindowService &windows, std::function<bool()> listed, QObject *parent = nullptr);

    // The mode changed: every visible window follows at once.
    void apply();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    static bool isTopLevelWindow(const QWidget &widget);

    QVWindowService &m_windows;
    std::function<bool()> m_listed;
};
