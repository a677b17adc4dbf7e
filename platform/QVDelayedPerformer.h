#pragma once

#include <functional>

// One pending delayed call at a time, as the key repetition needs it.
class QVDelayedPerformer
{
public:
    virtual ~QVDelayedPerformer() = default;

    // Runs the call once after the delay, on the main thread.
    virtual void performAfterDelay(double seconds, std::function<void()> call) = 0;
    virtual void cancelPreviousPerformRequests() = 0;
};
