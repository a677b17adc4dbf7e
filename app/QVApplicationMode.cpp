#include "QVApplicationMode.h"

#include "QVDelayedPerformer.h"
#include "QVLog.h"
#include "QVUserDefaults.h"

#include <algorithm>

const QString QVApplicationMode::settingsKey = QStringLiteral("Application Mode");
const QString QVApplicationMode::preferencesSectionKey = QStringLiteral("Preferences Section");

namespace
{
constexpr double terminationDelay = 0.5; // leaves the user a moment to change their mind
} // namespace

QVApplicationMode::QVApplicationMode(QVUserDefaults &defaults, QVDelayedPerformer &terminationTimer, Actions actions)
    : m_defaults(defaults)
    , m_terminationTimer(terminationTimer)
    , m_actions(std::move(actions))
{
}

qint64 QVApplicationMode::clampedStoredMode() const
{
    return std::clamp(m_defaults.integerForKey(settingsKey), qint64(TaskbarWindow), qint64(Faceless));
}

void QVApplicationMode::updateApplicationMode()
{
    // The raw value decides: anything below 1 is the task bar window.
    const bool shouldBeDockless = m_defaults.integerForKey(settingsKey) >= TrayIcon;
    if (shouldBeDockless == m_isDockless)
        return;
    const bool windowWasVisible = m_actions.preferencesWindowVisible();
    if (m_isDockless)
        transformToForeground(windowWasVisible);
    else
        restartOutsideTaskbar(windowWasVisible);
}

void QVApplicationMode::transformToForeground(bool windowWasVisible)
{
    if (!m_actions.transformToForegroundApplication()) {
        m_defaults.setObject(qint64(TrayIcon), settingsKey);
        QVLog(QStringLiteral("cannot transform process"));
        m_actions.beep();
        return;
    }
    m_isDockless = false;
    if (windowWasVisible)
        m_actions.bringPreferencesWindowForward();
}

void QVApplicationMode::restartOutsideTaskbar(bool windowWasVisible)
{
    if (windowWasVisible)
        m_defaults.setObject(QStringLiteral("General"), preferencesSectionKey);
    QString error;
    if (!m_actions.launchRestartHelper(&error)) {
        // Without the helper nobody would start Corvane again: keep running as we are.
        QVLog(QStringLiteral("cannot restart Corvane in the new mode (%1); it takes effect at the next start")
                  .arg(error));
        m_defaults.removeObjectForKey(preferencesSectionKey);
        m_actions.beep();
        return;
    }
    m_terminationTimer.performAfterDelay(terminationDelay, m_actions.terminate);
    m_isScheduledToQuit = true;
}

bool QVApplicationMode::changeApplicationMode(qint64 mode)
{
    if (mode == m_defaults.integerForKey(settingsKey))
        return false;
    m_terminationTimer.cancelPreviousPerformRequests();
    m_isScheduledToQuit = false;
    m_defaults.setObject(mode, settingsKey);
    updateApplicationMode();
    return true;
}
