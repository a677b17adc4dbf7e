#include "QVTimerDelayedPerformer.h"

#include <cmath>

QVTimerDelayedPerformer::QVTimerDelayedPerformer()
{
    m_timer.setSingleShot(true);
    // Key repetition is felt: coarse timers would make it stutter.
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
        const std::function<void()> call = std::move(m_call);
        m_call = nullptr;
        if (call)
            call();
    });
}

void QVTimerDelayedPerformer::performAfterDelay(double seconds, std::function<void()> call)
{
    m_call = std::move(call);
    m_timer.start(static_cast<int>(std::lround(seconds * 1000.0)));
}

void QVTimerDelayedPerformer::cancelPreviousPerformRequests()
{
    m_timer.stop();
    m_call = nullptr;
}
