// How long a control performed from outside takes to move the pointer, on the X
// server of $DISPLAY with a corvane running: `corvane --perform` started as a new
// process (as a compositor's key binding does), and org.corvane.Corvane.Perform on the
// session bus. Beside them, the floor: an XTest motion posted by this program and
// seen in the pointer. Samples are interleaved; the pointer is put back before each.
//
//   perform_latency CORVANE SETTINGS NAME [SAMPLES=100]

#include <QCoreApplication>
#include <QDBusInterface>
#include <QElapsedTimer>
#include <QProcess>

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace
{

constexpr int startX = 400;
constexpr int startY = 300;
constexpr qint64 timeoutNs = 2'000'000'000;
constexpr useconds_t pollPauseUs = 50;

double percentile(std::vector<double> samples, double p)
{
    if (samples.empty())
        return 0;
    std::sort(samples.begin(), samples.end());
    return samples[std::min(samples.size() - 1, size_t(p / 100.0 * double(samples.size())))];
}

struct Pointer {
    xcb_connection_t *connection;
    xcb_window_t root;

    int x() const
    {
        std::unique_ptr<xcb_query_pointer_reply_t, decltype(&free)> reply(
            xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root), nullptr), &free);
        return reply ? reply->root_x : -1;
    }
    void moveTo(int x, int y) const
    {
        xcb_test_fake_input(connection, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root, int16_t(x), int16_t(y), 0);
        xcb_flush(connection);
    }
    // Microseconds from timer start until the pointer left startX; -1 on a time-out.
    double waitForMove(const QElapsedTimer &timer) const
    {
        // A short pause between reads leaves the two cores to the server and corvane.
        while (timer.nsecsElapsed() < timeoutNs) {
            if (x() != startX)
                return double(timer.nsecsElapsed()) / 1000.0;
            usleep(pollPauseUs);
        }
        return -1;
    }
    void reset() const
    {
        moveTo(startX, startY);
        while (x() != startX)
            ;
    }
};

void printRow(const char *name, const std::vector<double> &samples, double floorP50)
{
    std::printf("  %-44s %10.1f %10.1f   %6.1fx floor   (%zu samples)\n", name, percentile(samples, 50),
        percentile(samples, 99), floorP50 > 0 ? percentile(samples, 50) / floorP50 : 0.0, samples.size());
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc < 4) {
        std::fprintf(stderr, "usage: perform_latency CORVANE SETTINGS NAME [SAMPLES]\n");
        return 2;
    }
    const QString corvane = QString::fromLocal8Bit(argv[1]);
    const QString settings = QString::fromLocal8Bit(argv[2]);
    const QString name = QString::fromLocal8Bit(argv[3]);
    const int samples = argc > 4 ? std::atoi(argv[4]) : 100;

    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection)) {
        std::fprintf(stderr, "perform_latency: cannot open $DISPLAY\n");
        return 1;
    }
    const Pointer pointer { connection, xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root };
    QDBusInterface bus(QStringLiteral("org.corvane.Corvane"), QStringLiteral("/org/corvane/Corvane"),
        QStringLiteral("org.corvane.Corvane"));

    const auto release = [&] { bus.call(QStringLiteral("Release"), name); };
    std::vector<double> floor, process, dbus;
    for (int sample = 0; sample < samples; ++sample) {
        QElapsedTimer timer;
        pointer.reset();
        timer.start();
        pointer.moveTo(startX + 1, startY);
        if (const double us = pointer.waitForMove(timer); us >= 0)
            floor.push_back(us);

        pointer.reset();
        QProcess perform;
        timer.start();
        perform.start(corvane, { QStringLiteral("--settings"), settings, QStringLiteral("--perform"), name });
        const double processUs = pointer.waitForMove(timer);
        perform.waitForFinished(5000);
        release(); // before the repetition's first delay is up
        if (processUs >= 0)
            process.push_back(processUs);

        pointer.reset();
        timer.start();
        bus.call(QStringLiteral("Perform"), name);
        const double dbusUs = pointer.waitForMove(timer);
        release();
        if (dbusUs >= 0)
            dbus.push_back(dbusUs);
    }
    const double floorP50 = percentile(floor, 50);
    std::printf("Controls performed from outside (microseconds)\n");
    std::printf("  %-44s %10s %10s\n", "figure", "p50", "p99");
    printRow("floor: XTest motion posted, pointer read back", floor, floorP50);
    printRow("corvane --perform started → pointer moved", process, floorP50);
    printRow("D-Bus Perform called → pointer moved", dbus, floorP50);
    std::printf("RESULT floor_p50_us=%.1f perform_p50_us=%.1f perform_p99_us=%.1f dbus_p50_us=%.1f "
                "dbus_p99_us=%.1f\n",
        floorP50, percentile(process, 50), percentile(process, 99), percentile(dbus, 50), percentile(dbus, 99));
    xcb_disconnect(connection);
    return 0;
}
