#pragma once

#include <QString>

#include <functional>

class QVDelayedPerformer;
class QVUserDefaults;

// How Corvane presents itself ("Application Mode"): 0 a window in the task bar,
// 1 an icon in the system tray, 2 neither. A running process can join the task
// bar at once, but leaves it only by starting afresh: the restart helper waits
// for this process to end and starts Corvane again in the new mode.
class QVApplicationMode final
{
public:
    enum Mode : qint64 { TaskbarWindow = 0, TrayIcon = 1, Faceless = 2 };

    // What changing the mode asks of the rest of the application.
    struct Actions {
        std::function<bool()> preferencesWindowVisible;
        // Lists the application's windows in the task bar; false when that fails.
        std::function<bool()> transformToForegroundApplication;
        std::function<void()> bringPreferencesWindowForward;
        std::function<bool(QString *error)> launchRestartHelper;
        std::function<void()> terminate;
        std::function<void()> beep;
    };

    QVApplicationMode(QVUserDefaults &defaults, QVDelayedPerformer &terminationTimer, Actions actions);

    static const QString settingsKey; // "Application Mode"
    static const QString preferencesSectionKey; // "Preferences Section"

    // The stored mode as the pop-up shows it.
    qint64 clampedStoredMode() const;

    // Brings the process in line with the stored mode: into the task bar at once,
    // out of it through a restart half a second later.
    void updateApplicationMode();
    // The user chose a mode; false when it equals the stored one. A restart that an
    // earlier choice scheduled is withdrawn first.
    bool changeApplicationMode(qint64 mode);

    // Every launch starts outside the task bar.
    bool isDockless() const { return m_isDockless; }
    bool isScheduledToQuit() const { return m_isScheduledToQuit; }

private:
    void transformToForeground(bool windowWasVisible);
    void restartOutsideTaskbar(bool windowWasVisible);

    QVUserDefaults &m_defaults;
    QVDelayedPerformer &m_terminationTimer;
    Actions m_actions;
    bool m_isDockless = true;
    bool m_isScheduledToQuit = false;
};
