#pragma once

#include "QVDelayedPerformer.h"

#include <QTimer>

// A delayed call on Qt's event loop.
class QVTimerDelayedPerformer final : public QVDelayedPerformer
{
public:
    QVTimerDelayedPerformer();

    void performAfterDelay(double seconds, std::function<void()> call) override;
    void cancelPreviousPerformRequests() override;

private:
    QTimer m_timer;
    std::function<void()> m_call;
};
