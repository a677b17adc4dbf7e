#pragma once

#include "QVDelayedPerformer.h"

#include <QList>

#include <algorithm>
#include <functional>
#include <utility>

// Virtual time: delayed calls wait for advance(), sleeping moves the time on.
class QVFakeClock final
{
public:
    class Performer final : public QVDelayedPerformer
    {
    public:
        explicit Performer(QVFakeClock &clock) : m_clock(clock) { m_clock.m_performers.append(this); }
        ~Performer() override { m_clock.m_performers.removeOne(this); }
        void performAfterDelay(double seconds, std::function<void()> call) override
        {
            due = m_clock.now + seconds;
            pending = std::move(call);
        }
        void cancelPreviousPerformRequests() override { pending = nullptr; }

        double due = 0.0;
        std::function<void()> pending;

    private:
        QVFakeClock &m_clock;
    };

    // Runs every call that falls due within the next seconds, in time order.
    void advance(double seconds)
    {
        const double end = now + seconds + 1e-9; // steps add up binary fractions
        for (;;) {
            Performer *next = nullptr;
            for (Performer *performer : std::as_const(m_performers))
                if (performer->pending && performer->due <= end && (!next || performer->due < next->due))
                    next = performer;
            if (!next)
                break;
            now = std::max(now, next->due);
            std::exchange(next->pending, nullptr)();
        }
        now = end;
    }

    double now = 0.0;

private:
    QList<Performer *> m_performers;
};
