#pragma once

#include "QVDelayedPerformer.h"

#include <QList>

#include <utility>

// Keeps the pending call instead of starting a timer; fire() runs it at once.
class QVFakeDelayedPerformer final : public QVDelayedPerformer
{
public:
    void performAfterDelay(double seconds, std::function<void()> call) override
    {
        requestedDelays.append(seconds);
        pending = std::move(call);
    }
    void cancelPreviousPerformRequests() override { pending = nullptr; }
    // False when nothing is pending. Taken out first: the call may schedule the next one.
    bool fire()
    {
        const std::function<void()> call = std::exchange(pending, nullptr);
        if (call)
            call();
        return static_cast<bool>(call);
    }

    QList<double> requestedDelays; // seconds, in order
    std::function<void()> pending;
};
