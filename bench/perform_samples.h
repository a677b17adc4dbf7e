#pragma once

// What the perform benchmarks share, whatever the window system: the interleaved
// samples of a control performed from outside and their table. A Pointer offers
//   reset()                 put back at its start, and seen there
//   nudge()                 a motion away from the start, posted by the benchmark (the floor)
//   waitForMove(timer)      microseconds from the timer's start until it left the start; -1 on a time-out

#include <QDBusInterface>
#include <QElapsedTimer>
#include <QProcess>
#include <QString>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <vector>

inline double percentile(std::vector<double> samples, double p)
{
    if (samples.empty())
        return 0;
    std::sort(samples.begin(), samples.end());
    return samples[std::min(samples.size() - 1, size_t(p / 100.0 * double(samples.size())))];
}

// Set by a termination signal once endSamplingOnSignals() ran: the samples so far are printed.
inline volatile std::sig_atomic_t samplingEnded = 0;

// For a benchmark whose rig outlives a sample: its destructors get to stop what it started.
inline void endSamplingOnSignals()
{
    for (const int signal : { SIGINT, SIGTERM })
        std::signal(signal, [](int) { samplingEnded = 1; });
}

struct PerformSamples {
    std::vector<double> floor, process, dbus;

    void print(const char *floorName) const
    {
        const double floorP50 = percentile(floor, 50);
        std::printf("Controls performed from outside (microseconds)\n");
        std::printf("  %-44s %10s %10s\n", "figure", "p50", "p99");
        printRow(floorName, floor, floorP50);
        printRow("corvane --perform started → pointer moved", process, floorP50);
        printRow("D-Bus Perform called → pointer moved", dbus, floorP50);
        std::printf("RESULT floor_p50_us=%.1f perform_p50_us=%.1f perform_p99_us=%.1f dbus_p50_us=%.1f "
                    "dbus_p99_us=%.1f\n",
            floorP50, percentile(process, 50), percentile(process, 99), percentile(dbus, 50), percentile(dbus, 99));
    }

    static void printRow(const char *name, const std::vector<double> &samples, double floorP50)
    {
        std::printf("  %-44s %10.1f %10.1f   %6.1fx floor   (%zu samples)\n", name, percentile(samples, 50),
            percentile(samples, 99), floorP50 > 0 ? percentile(samples, 50) / floorP50 : 0.0, samples.size());
    }
};

// The floor, `corvane --perform NAME` started as a new process (as a key binding does)
// and D-Bus Perform(NAME), in turn, each from the start. A Move repeats: Release ends it
// before the repetition's first delay is up.
template<typename Pointer>
PerformSamples samplePerform(
    Pointer &pointer, const QString &corvane, const QString &settings, const QString &name, int samples)
{
    QDBusInterface bus(QStringLiteral("org.corvane.Corvane"), QStringLiteral("/org/corvane/Corvane"),
        QStringLiteral("org.corvane.Corvane"));
    const auto keep = [](std::vector<double> &figures, double us) {
        if (us >= 0)
            figures.push_back(us);
    };
    PerformSamples result;
    for (int sample = 0; sample < samples && !samplingEnded; ++sample) {
        QElapsedTimer timer;
        pointer.reset();
        timer.start();
        pointer.nudge();
        keep(result.floor, pointer.waitForMove(timer));

        pointer.reset();
        QProcess perform;
        timer.start();
        perform.start(corvane, { QStringLiteral("--settings"), settings, QStringLiteral("--perform"), name });
        const double processUs = pointer.waitForMove(timer);
        perform.waitForFinished(5000);
        bus.call(QStringLiteral("Release"), name);
        keep(result.process, processUs);

        pointer.reset();
        timer.start();
        bus.call(QStringLiteral("Perform"), name);
        const double dbusUs = pointer.waitForMove(timer);
        bus.call(QStringLiteral("Release"), name);
        keep(result.dbus, dbusUs);
    }
    return result;
}
