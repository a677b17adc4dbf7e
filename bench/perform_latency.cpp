// How long a control performed from outside takes to move the pointer, on the X
// server of $DISPLAY with a corvane running: `corvane --perform` started as a new
// process (as a compositor's key binding does), and org.corvane.Corvane.Perform on the
// session bus. Beside them, the floor: an XTest motion posted by this program and
// seen in the pointer. Samples are interleaved; the pointer is put back before each.
//
//   perform_latency CORVANE SETTINGS NAME [SAMPLES=100]

#include "perform_samples.h"

#include <QCoreApplication>

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace
{

constexpr int startX = 400;
constexpr int startY = 300;
constexpr qint64 timeoutNs = 2'000'000'000;
constexpr useconds_t pollPauseUs = 50;

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
    void nudge() const { moveTo(startX + 1, startY); }
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

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc < 4) {
        std::fprintf(stderr, "usage: perform_latency CORVANE SETTINGS NAME [SAMPLES]\n");
        return 2;
    }
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection)) {
        std::fprintf(stderr, "perform_latency: cannot open $DISPLAY\n");
        return 1;
    }
    const Pointer pointer { connection, xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root };
    samplePerform(pointer, QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]),
        QString::fromLocal8Bit(argv[3]), argc > 4 ? std::atoi(argv[4]) : 100)
        .print("floor: XTest motion posted, pointer read back");
    xcb_disconnect(connection);
    return 0;
}
