// Hot key latency benchmark.
//
// Measures, on the X server named by $DISPLAY:
//   floor (round trip): an XTest motion to a new position followed by a QueryPointer; the time
//                       from sending both requests to holding the reply that shows the position.
//   floor (event):      an XTest motion to a new position; the time until the XInput 2 raw
//                       motion event it causes reaches this client. Same detection path as below.
//   hot key:            with a running Corvane holding a Move hot key, an XTest press of the hot
//                       key; the time until the pointer has moved (raw motion event, or polling
//                       QueryPointer with --poll).
// The samples are interleaved; the pointer is put back to the same start position before each
// hot key sample so it never reaches an edge. This prints figures and never judges them.

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <X11/keysym.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using Clock = std::chrono::steady_clock;

struct Options {
    int samples = 300;
    int warmup = 20;
    xcb_keycode_t keyCode = 114; // Right
    bool holdModifiers = true; // press Control_L and Alt_L once, only the key per sample
    bool pollPointer = false; // detect the move by polling QueryPointer instead of events
    int expectDx = 10;
    int expectDy = 0;
    int timeoutMs = 1000;
    bool probe = false; // one hot key attempt; exit status 0 when the pointer moved
    // Hot keys of the reference responder, a minimal client started by this program.
    bool reference = true;
    xcb_keycode_t directKey = 56; // b: moves with a relative XTest motion at once
    xcb_keycode_t queryKey = 57; // n: asks for the pointer position first, then moves
    // keynav, when running with "ctrl+alt+<start> start" and "<key> cut-right,warp,end" bound.
    bool keynav = false;
    xcb_keycode_t keynavStart = 29; // y
    xcb_keycode_t keynavKey = 46; // l
    int typeKeys = 0; // > 0: only type this many ordinary keys into a window of our own
};

void usage()
{
    std::fputs("usage: hotkey_latency [--samples N] [--warmup N] [--keycode N] [--modifiers hold|each]\n"
               "                      [--poll] [--expect-dx N] [--expect-dy N] [--timeout-ms N] [--probe]\n"
               "                      [--no-reference] [--reference-keys DIRECT,QUERY] [--keynav START,KEY]\n"
               "                      [--type N]\n"
               "  Needs a running corvane with a Move hot key on Control+Alt+<keycode> (default 114, Right)\n"
               "  moving by (expect-dx, expect-dy) (default 10, 0).\n"
               "  --probe: press the hot key once and exit 0 if the pointer moved (readiness check).\n"
               "  The reference responder is a minimal client this program starts; it grabs Control+Alt+DIRECT\n"
               "  (default 56, b) and moves at once, and Control+Alt+QUERY (default 57, n) and queries the\n"
               "  pointer before moving. These key codes must not be Corvane hot keys.\n"
               "  --keynav: also time a running keynav: Control+Alt+START (untimed) starts it, then KEY\n"
               "  (bound to cut-right,warp,end) is timed until the pointer moves. Implies --poll: keynav\n"
               "  warps the pointer, which makes no raw motion event.\n"
               "  --type N: type N ordinary keys into a focused window of this program, then exit.\n",
        stderr);
}

bool parseOptions(int argc, char **argv, Options &options)
{
    for (int index = 1; index < argc; ++index) {
        const std::string_view argument = argv[index];
        auto value = [&]() -> const char * {
            if (index + 1 >= argc) {
                std::fprintf(stderr, "hotkey_latency: %s needs a value\n", argv[index]);
                std::exit(2);
            }
            return argv[++index];
        };
        if (argument == "--samples")
            options.samples = std::max(1, std::atoi(value()));
        else if (argument == "--warmup")
            options.warmup = std::max(0, std::atoi(value()));
        else if (argument == "--keycode")
            options.keyCode = static_cast<xcb_keycode_t>(std::atoi(value()));
        else if (argument == "--modifiers") {
            const std::string_view mode = value();
            if (mode == "hold")
                options.holdModifiers = true;
            else if (mode == "each")
                options.holdModifiers = false;
            else
                return false;
        } else if (argument == "--poll")
            options.pollPointer = true;
        else if (argument == "--expect-dx")
            options.expectDx = std::atoi(value());
        else if (argument == "--expect-dy")
            options.expectDy = std::atoi(value());
        else if (argument == "--timeout-ms")
            options.timeoutMs = std::max(1, std::atoi(value()));
        else if (argument == "--probe")
            options.probe = true;
        else if (argument == "--no-reference")
            options.reference = false;
        else if (argument == "--keynav") {
            int start = 0;
            int key = 0;
            if (std::sscanf(value(), "%d,%d", &start, &key) != 2)
                return false;
            options.keynav = true;
            options.pollPointer = true; // the only way to see keynav's warp: compare like with like
            options.keynavStart = static_cast<xcb_keycode_t>(start);
            options.keynavKey = static_cast<xcb_keycode_t>(key);
        } else if (argument == "--type")
            options.typeKeys = std::max(1, std::atoi(value()));
        else if (argument == "--reference-keys") {
            int direct = 0;
            int query = 0;
            if (std::sscanf(value(), "%d,%d", &direct, &query) != 2)
                return false;
            options.directKey = static_cast<xcb_keycode_t>(direct);
            options.queryKey = static_cast<xcb_keycode_t>(query);
        } else
            return false;
    }
    return true;
}

double microseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::micro>(duration).count();
}

// The reference responder: the least a hot key client has to do, in a process of its own with a
// blocking read. Control+Alt+direct: a relative XTest motion. Control+Alt+query: QueryPointer,
// then an absolute XTest motion, like a client that needs the position first.
[[noreturn]] void runResponder(xcb_keycode_t directKey, xcb_keycode_t queryKey, int dx, int dy, int readyFd)
{
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    xcb_connection_t *c = xcb_connect(nullptr, nullptr);
    char status = 0;
    if (!xcb_connection_has_error(c)) {
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
        const uint16_t modifiers = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
        status = 1;
        for (const xcb_keycode_t key : { directKey, queryKey }) {
            xcb_generic_error_t *error = xcb_request_check(
                c, xcb_grab_key_checked(c, 0, root, modifiers, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
            if (error) {
                status = 0;
                std::free(error);
            }
        }
        if (::write(readyFd, &status, 1) != 1)
            std::_Exit(1);
        ::close(readyFd);
        while (status) {
            xcb_generic_event_t *event = xcb_wait_for_event(c);
            if (!event)
                break;
            if ((event->response_type & 0x7f) == XCB_KEY_PRESS) {
                const auto *press = reinterpret_cast<const xcb_key_press_event_t *>(event);
                if (press->detail == directKey) {
                    xcb_test_fake_input(c, XCB_MOTION_NOTIFY, 1, XCB_CURRENT_TIME, XCB_NONE, static_cast<int16_t>(dx),
                        static_cast<int16_t>(dy), 0);
                } else if (press->detail == queryKey) {
                    xcb_query_pointer_reply_t *pointer
                        = xcb_query_pointer_reply(c, xcb_query_pointer(c, root), nullptr);
                    if (pointer) {
                        xcb_test_fake_input(c, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root,
                            static_cast<int16_t>(pointer->root_x + dx), static_cast<int16_t>(pointer->root_y + dy), 0);
                        std::free(pointer);
                    }
                }
                xcb_flush(c);
            }
            std::free(event);
        }
    } else if (::write(readyFd, &status, 1) != 1) {
        std::_Exit(1);
    }
    std::_Exit(0);
}

class Bench
{
public:
    explicit Bench(const Options &options)
        : m_options(options)
    {
    }

    ~Bench()
    {
        stopResponder();
        if (m_connection) {
            releaseModifiers();
            if (m_symbols)
                xcb_key_symbols_free(m_symbols);
            xcb_disconnect(m_connection);
        }
    }

    bool connect()
    {
        m_connection = xcb_connect(nullptr, nullptr);
        if (xcb_connection_has_error(m_connection)) {
            std::fputs("hotkey_latency: cannot connect to $DISPLAY\n", stderr);
            xcb_disconnect(m_connection);
            m_connection = nullptr;
            return false;
        }
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        m_screenWidth = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->width_in_pixels;
        m_screenHeight = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->height_in_pixels;
        m_start = { m_screenWidth / 2, m_screenHeight / 2 };

        const xcb_query_extension_reply_t *xtest = xcb_get_extension_data(m_connection, &xcb_test_id);
        if (!xtest || !xtest->present) {
            std::fputs("hotkey_latency: the X server has no XTEST extension\n", stderr);
            return false;
        }
        m_symbols = xcb_key_symbols_alloc(m_connection);
        m_controlKey = keyCodeFor(XK_Control_L, 37);
        m_altKey = keyCodeFor(XK_Alt_L, 64);

        if (m_options.reference && !m_options.probe && !startResponder()) {
            std::fputs("hotkey_latency: the reference responder could not grab its keys; running without it\n", stderr);
            m_options.reference = false;
        }
        if (!m_options.pollPointer && !selectRawMotion()) {
            std::fputs("hotkey_latency: XInput 2.2 raw motion unavailable; polling QueryPointer instead\n", stderr);
            m_options.pollPointer = true;
        }
        return true;
    }

    int run()
    {
        if (m_options.probe)
            return probe() ? 0 : 1;
        if (m_options.typeKeys > 0)
            return typeIntoOwnWindow(m_options.typeKeys);

        std::printf("hotkey_latency: display %s, screen %dx%d\n", std::getenv("DISPLAY") ? std::getenv("DISPLAY") : "?",
            m_screenWidth, m_screenHeight);
        std::printf("  hot key: X key code %u with Control_L (%u) and Alt_L (%u); modifiers %s\n", m_options.keyCode,
            m_controlKey, m_altKey,
            m_options.holdModifiers ? "held down once for the whole run, only the key pressed per sample"
                                    : "pressed and released with the key for every sample");
        std::printf("  move detection: %s\n",
            m_options.pollPointer ? "polling QueryPointer (busy round trips)"
                                  : "XInput 2 XI_RawMotion events selected on the root window");
        std::printf(
            "  samples: %d of each kind, interleaved, after %d warm-up rounds\n", m_options.samples, m_options.warmup);

        if (m_options.holdModifiers)
            pressModifiers();

        std::vector<double> floorRoundTrip;
        std::vector<double> floorEvent;
        std::vector<double> hotKey;
        std::vector<double> referenceDirect;
        std::vector<double> referenceQuery;
        std::vector<double> keynav;
        int keynavFailures = 0;
        int failures = 0;
        int referenceFailures = 0;
        int wrongPosition = 0;
        const int rounds = m_options.warmup + m_options.samples;
        for (int round = 0; round < rounds; ++round) {
            const bool keep = round >= m_options.warmup;
            const double roundTrip = measureFloorRoundTrip(round);
            const double event = m_options.pollPointer ? -1 : measureFloorEvent(round);
            bool positionOk = true;
            const double key = measureHotKey(m_options.keyCode, positionOk);
            if (m_options.reference) {
                bool ignored = true;
                const double direct = measureHotKey(m_options.directKey, ignored);
                const double query = measureHotKey(m_options.queryKey, ignored);
                if (keep && direct >= 0)
                    referenceDirect.push_back(direct);
                if (keep && query >= 0)
                    referenceQuery.push_back(query);
                if (direct < 0 || query < 0)
                    ++referenceFailures;
                if (referenceFailures >= 3 && referenceDirect.empty() && referenceQuery.empty()) {
                    std::fputs(
                        "hotkey_latency: the reference responder does not move the pointer; dropping it\n", stderr);
                    m_options.reference = false;
                }
            }
            if (m_options.keynav) {
                const double elapsed = measureKeynav();
                if (elapsed < 0 && ++keynavFailures >= 3 && keynav.empty()) {
                    std::fputs("hotkey_latency: keynav does not move the pointer; dropping it\n", stderr);
                    m_options.keynav = false;
                }
                if (keep && elapsed >= 0)
                    keynav.push_back(elapsed);
            }
            if (key < 0) {
                ++failures;
                if (failures >= 5 && hotKey.empty()) {
                    std::fputs("hotkey_latency: the hot key does not move the pointer; is corvane running with "
                               "the Move hot key?\n",
                        stderr);
                    return 1;
                }
                continue;
            }
            if (!positionOk)
                ++wrongPosition;
            if (keep) {
                floorRoundTrip.push_back(roundTrip);
                if (event >= 0)
                    floorEvent.push_back(event);
                hotKey.push_back(key);
            }
        }
        if (m_options.holdModifiers)
            releaseModifiers();

        std::puts("");
        std::printf("  %-46s %9s %9s %9s %9s %9s\n", "figure (microseconds)", "p50", "p90", "p99", "min", "max");
        printRow("floor: XTest motion + QueryPointer reply", floorRoundTrip);
        if (!floorEvent.empty())
            printRow("floor: XTest motion -> raw motion event", floorEvent);
        printRow("hot key press -> pointer moved", hotKey);
        if (m_options.reference) {
            printRow("reference client: press -> relative move", referenceDirect);
            printRow("reference client: press -> query, move", referenceQuery);
        }
        if (!keynav.empty())
            printRow("keynav: key -> pointer moved", keynav);
        const double floorP50 = percentile(floorRoundTrip, 50);
        const double keyP50 = percentile(hotKey, 50);
        std::printf("  ratio hot key p50 / floor (round trip) p50: %.2f\n", keyP50 / floorP50);
        if (!floorEvent.empty())
            std::printf("  ratio hot key p50 / floor (event) p50:      %.2f\n", keyP50 / percentile(floorEvent, 50));
        if (failures)
            std::printf(
                "  hot key presses that did not move the pointer within %d ms: %d\n", m_options.timeoutMs, failures);
        if (wrongPosition)
            std::printf("  samples whose first move did not land at start + (%d, %d): %d\n", m_options.expectDx,
                m_options.expectDy, wrongPosition);

        // One line for scripts.
        std::printf("RESULT samples=%zu presses=%d modifiers=%s detection=%s floor_p50_us=%.1f floor_p90_us=%.1f "
                    "floor_p99_us=%.1f",
            hotKey.size(), rounds, m_options.holdModifiers ? "hold" : "each", m_options.pollPointer ? "poll" : "xi2",
            floorP50, percentile(floorRoundTrip, 90), percentile(floorRoundTrip, 99));
        if (!floorEvent.empty())
            std::printf(" floor_event_p50_us=%.1f floor_event_p90_us=%.1f floor_event_p99_us=%.1f",
                percentile(floorEvent, 50), percentile(floorEvent, 90), percentile(floorEvent, 99));
        std::printf(" hotkey_p50_us=%.1f hotkey_p90_us=%.1f hotkey_p99_us=%.1f ratio_p50=%.2f failures=%d", keyP50,
            percentile(hotKey, 90), percentile(hotKey, 99), keyP50 / floorP50, failures);
        if (!referenceDirect.empty())
            std::printf(" reference_direct_p50_us=%.1f reference_direct_p99_us=%.1f", percentile(referenceDirect, 50),
                percentile(referenceDirect, 99));
        if (!referenceQuery.empty())
            std::printf(" reference_query_p50_us=%.1f reference_query_p99_us=%.1f", percentile(referenceQuery, 50),
                percentile(referenceQuery, 99));
        if (!keynav.empty())
            std::printf(" keynav_p50_us=%.1f keynav_p90_us=%.1f keynav_p99_us=%.1f keynav_failures=%d",
                percentile(keynav, 50), percentile(keynav, 90), percentile(keynav, 99), keynavFailures);
        std::puts("");
        return 0;
    }

private:
    struct Point {
        int x = 0;
        int y = 0;
    };

    xcb_keycode_t keyCodeFor(xcb_keysym_t keysym, xcb_keycode_t fallback)
    {
        xcb_keycode_t *codes = xcb_key_symbols_get_keycode(m_symbols, keysym);
        xcb_keycode_t code = fallback;
        if (codes && codes[0] != XCB_NO_SYMBOL)
            code = codes[0];
        std::free(codes);
        return code;
    }

    bool startResponder()
    {
        int pipeFds[2];
        if (::pipe(pipeFds) != 0)
            return false;
        std::fflush(nullptr);
        m_responder = ::fork();
        if (m_responder < 0)
            return false;
        if (m_responder == 0) {
            ::close(pipeFds[0]);
            runResponder(m_options.directKey, m_options.queryKey, m_options.expectDx, m_options.expectDy, pipeFds[1]);
        }
        ::close(pipeFds[1]);
        char status = 0;
        const bool ready = ::read(pipeFds[0], &status, 1) == 1 && status == 1;
        ::close(pipeFds[0]);
        if (!ready)
            stopResponder();
        return ready;
    }

    void stopResponder()
    {
        if (m_responder <= 0)
            return;
        ::kill(m_responder, SIGTERM);
        ::waitpid(m_responder, nullptr, 0);
        m_responder = -1;
    }

    bool selectRawMotion()
    {
        const xcb_query_extension_reply_t *input = xcb_get_extension_data(m_connection, &xcb_input_id);
        if (!input || !input->present)
            return false;
        m_xinputOpcode = input->major_opcode;
        xcb_input_xi_query_version_reply_t *version
            = xcb_input_xi_query_version_reply(m_connection, xcb_input_xi_query_version(m_connection, 2, 2), nullptr);
        if (!version)
            return false;
        // Raw events reach root windows regardless of grabs from XI 2.1 on.
        const bool recent = version->major_version > 2 || (version->major_version == 2 && version->minor_version >= 1);
        std::free(version);
        if (!recent)
            return false;

        struct {
            xcb_input_event_mask_t head;
            uint32_t mask;
        } selection {};
        selection.head.deviceid = XCB_INPUT_DEVICE_ALL_MASTER;
        selection.head.mask_len = 1;
        selection.mask = XCB_INPUT_XI_EVENT_MASK_RAW_MOTION;
        xcb_generic_error_t *error = xcb_request_check(
            m_connection, xcb_input_xi_select_events_checked(m_connection, m_root, 1, &selection.head));
        if (error) {
            std::free(error);
            return false;
        }
        return true;
    }

    void fakeKey(uint8_t type, xcb_keycode_t code)
    {
        xcb_test_fake_input(m_connection, type, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    }

    void fakeMotion(Point point)
    {
        xcb_test_fake_input(m_connection, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, m_root, static_cast<int16_t>(point.x),
            static_cast<int16_t>(point.y), 0);
    }

    void pressModifiers()
    {
        fakeKey(XCB_KEY_PRESS, m_controlKey);
        fakeKey(XCB_KEY_PRESS, m_altKey);
        m_modifiersDown = true;
        sync();
    }

    void releaseModifiers()
    {
        if (!m_modifiersDown)
            return;
        fakeKey(XCB_KEY_RELEASE, m_altKey);
        fakeKey(XCB_KEY_RELEASE, m_controlKey);
        m_modifiersDown = false;
        sync();
    }

    Point queryPointer()
    {
        Point point { -1, -1 };
        xcb_query_pointer_reply_t *reply
            = xcb_query_pointer_reply(m_connection, xcb_query_pointer(m_connection, m_root), nullptr);
        if (reply) {
            point = { reply->root_x, reply->root_y };
            std::free(reply);
        }
        return point;
    }

    // A round trip, then throw away every event that arrived before its reply.
    void sync()
    {
        std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
        drainEvents();
    }

    void drainEvents()
    {
        while (xcb_generic_event_t *event = xcb_poll_for_event(m_connection))
            std::free(event);
    }

    bool isRawMotion(const xcb_generic_event_t *event) const
    {
        if ((event->response_type & 0x7f) != XCB_GE_GENERIC)
            return false;
        const auto *generic = reinterpret_cast<const xcb_ge_generic_event_t *>(event);
        return generic->extension == m_xinputOpcode && generic->event_type == XCB_INPUT_RAW_MOTION;
    }

    // Waits for the next raw motion event; false when none arrives before the deadline.
    bool waitForRawMotion(Clock::time_point deadline)
    {
        for (;;) {
            while (xcb_generic_event_t *event = xcb_poll_for_event(m_connection)) {
                const bool found = isRawMotion(event);
                std::free(event);
                if (found)
                    return true;
            }
            if (xcb_connection_has_error(m_connection))
                return false;
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
            if (left < 0)
                return false;
            pollfd descriptor { xcb_get_file_descriptor(m_connection), POLLIN, 0 };
            ::poll(&descriptor, 1, static_cast<int>(left) + 1);
        }
    }

    // Puts the pointer at the start position for a hot key sample and waits until it is there.
    void resetPointer()
    {
        fakeMotion(m_start);
        sync();
    }

    Point floorTarget(int round) const
    {
        // Alternate between two places away from the start position and from every edge.
        return { m_screenWidth / 3 + (round % 2) * 20, m_screenHeight / 3 };
    }

    double measureFloorRoundTrip(int round)
    {
        const Point target = floorTarget(round);
        const Clock::time_point begin = Clock::now();
        fakeMotion(target);
        Point seen = queryPointer();
        while (seen.x != target.x || seen.y != target.y) {
            if (Clock::now() - begin > std::chrono::milliseconds(m_options.timeoutMs))
                break;
            seen = queryPointer();
        }
        const double elapsed = microseconds(Clock::now() - begin);
        drainEvents();
        return elapsed;
    }

    double measureFloorEvent(int round)
    {
        // Move somewhere else first, so the measured motion always changes the position.
        fakeMotion(floorTarget(round + 1));
        sync();
        const Point target = floorTarget(round);
        const Clock::time_point begin = Clock::now();
        fakeMotion(target);
        xcb_flush(m_connection);
        const bool seen = waitForRawMotion(begin + std::chrono::milliseconds(m_options.timeoutMs));
        const double elapsed = microseconds(Clock::now() - begin);
        sync();
        return seen ? elapsed : -1;
    }

    // Returns the time from the key press to the pointer having moved, or -1 when it did not move.
    double measureHotKey(xcb_keycode_t keyCode, bool &positionOk)
    {
        resetPointer();
        const Point expected { m_start.x + m_options.expectDx, m_start.y + m_options.expectDy };
        const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(m_options.timeoutMs);

        const Clock::time_point begin = Clock::now();
        if (!m_options.holdModifiers) {
            fakeKey(XCB_KEY_PRESS, m_controlKey);
            fakeKey(XCB_KEY_PRESS, m_altKey);
        }
        fakeKey(XCB_KEY_PRESS, keyCode);
        xcb_flush(m_connection);

        bool moved = false;
        Point seen;
        Clock::time_point end;
        if (m_options.pollPointer) {
            do {
                seen = queryPointer();
                moved = seen.x != m_start.x || seen.y != m_start.y;
            } while (!moved && Clock::now() < deadline);
            end = Clock::now();
        } else {
            moved = waitForRawMotion(deadline);
            end = Clock::now();
            if (moved)
                seen = queryPointer();
        }

        fakeKey(XCB_KEY_RELEASE, keyCode);
        if (!m_options.holdModifiers) {
            fakeKey(XCB_KEY_RELEASE, m_altKey);
            fakeKey(XCB_KEY_RELEASE, m_controlKey);
        }
        // Let any further reaction to the press and release settle before the next sample.
        sync();
        if (!moved)
            return -1;
        positionOk = seen.x == expected.x && seen.y == expected.y;
        return microseconds(end - begin);
    }

    // keynav's start key (untimed), then its key bound to cut-right,warp,end: the time from
    // that key's press to the pointer having moved, or -1.
    double measureKeynav()
    {
        if (m_options.holdModifiers)
            releaseModifiers();
        resetPointer();
        fakeKey(XCB_KEY_PRESS, m_controlKey);
        fakeKey(XCB_KEY_PRESS, m_altKey);
        fakeKey(XCB_KEY_PRESS, m_options.keynavStart);
        fakeKey(XCB_KEY_RELEASE, m_options.keynavStart);
        fakeKey(XCB_KEY_RELEASE, m_altKey);
        fakeKey(XCB_KEY_RELEASE, m_controlKey);
        sync();
        double elapsed = -1;
        // keynav takes the keyboard at its start key; trying to grab it here to see would race
        // with keynav's own grab, so give it time instead (the start is not timed).
        ::usleep(30000);
        {
            // keynav warps the pointer: a warp makes no raw motion event, so only polling sees it.
            const Clock::time_point begin = Clock::now();
            const Clock::time_point deadline = begin + std::chrono::milliseconds(m_options.timeoutMs);
            fakeKey(XCB_KEY_PRESS, m_options.keynavKey);
            xcb_flush(m_connection);
            Point seen;
            do
                seen = queryPointer();
            while (seen.x == m_start.x && seen.y == m_start.y && Clock::now() < deadline);
            if (seen.x != m_start.x || seen.y != m_start.y)
                elapsed = microseconds(Clock::now() - begin);
            fakeKey(XCB_KEY_RELEASE, m_options.keynavKey);
            sync();
            ::usleep(30000); // keynav ends and lets the keyboard go
        }
        if (m_options.holdModifiers)
            pressModifiers();
        return elapsed;
    }

    // Types keys into a window of this program that has the input focus, as a person
    // typing into another program: hot key tools should not work for that.
    int typeIntoOwnWindow(int count)
    {
        const xcb_window_t window = xcb_generate_id(m_connection);
        const uint32_t values[] = { 1, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE };
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_root, 0, 0, 200, 100, 0,
            XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
        xcb_map_window(m_connection, window);
        sync();
        xcb_set_input_focus(m_connection, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
        sync();
        static const xcb_keycode_t letters[] = { 38, 56, 54, 40, 26, 41, 42, 43, 31, 44, 45, 46, 58, 57, 32, 33 };
        for (int index = 0; index < count; ++index) {
            const xcb_keycode_t key = letters[index % (sizeof letters / sizeof letters[0])];
            fakeKey(XCB_KEY_PRESS, key);
            fakeKey(XCB_KEY_RELEASE, key);
            sync();
            ::usleep(2000); // about a fast typist's pace, one key at a time
        }
        xcb_destroy_window(m_connection, window);
        sync();
        std::printf("typed %d keys\n", count);
        return 0;
    }

    bool probe()
    {
        m_options.holdModifiers = false; // the probe presses the modifiers with the key
        bool positionOk = false;
        const double elapsed = measureHotKey(m_options.keyCode, positionOk);
        if (elapsed < 0) {
            std::puts("probe: the pointer did not move");
            return false;
        }
        std::printf(
            "probe: the pointer moved after %.0f us%s\n", elapsed, positionOk ? "" : " (not by the expected offset)");
        return true;
    }

    static double percentile(std::vector<double> values, double which)
    {
        if (values.empty())
            return std::nan("");
        std::sort(values.begin(), values.end());
        // Nearest rank.
        const auto rank = static_cast<std::size_t>(std::ceil(which / 100.0 * static_cast<double>(values.size())));
        return values[std::clamp<std::size_t>(rank, 1, values.size()) - 1];
    }

    static void printRow(const char *label, const std::vector<double> &values)
    {
        if (values.empty()) {
            std::printf("  %-46s %9s\n", label, "no data");
            return;
        }
        const auto [low, high] = std::minmax_element(values.begin(), values.end());
        std::printf("  %-46s %9.1f %9.1f %9.1f %9.1f %9.1f\n", label, percentile(values, 50), percentile(values, 90),
            percentile(values, 99), *low, *high);
    }

    Options m_options;
    xcb_connection_t *m_connection = nullptr;
    xcb_key_symbols_t *m_symbols = nullptr;
    xcb_window_t m_root = XCB_NONE;
    int m_screenWidth = 0;
    int m_screenHeight = 0;
    uint8_t m_xinputOpcode = 0;
    xcb_keycode_t m_controlKey = 37;
    xcb_keycode_t m_altKey = 64;
    bool m_modifiersDown = false;
    Point m_start {};
    pid_t m_responder = -1;
};

} // namespace

int main(int argc, char **argv)
{
    Options options;
    if (!parseOptions(argc, argv, options)) {
        usage();
        return 2;
    }
    Bench bench(options);
    if (!bench.connect())
        return 1;
    return bench.run();
}
