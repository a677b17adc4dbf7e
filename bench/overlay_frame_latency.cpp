// Screen-section overlay benchmark.
//
// With a running Corvane that holds a screen-section hot key (Control+Alt+S by default) on the
// X server named by $DISPLAY, measures on screen, by reading single pixels of the root window back:
//   shown:  from sending the hot key press to the first frame of the overlay on screen (the pixel
//           on the display's vertical centre line differs from what it was before);
//   step:   from sending "l" (keep the right half) to the redrawn frame (the pixel on the right
//           half's centre line differs).
// Each sample then closes the overlay with Escape and waits until the screen and the keyboard are
// free again. The floor is one 1x1 GetImage round trip, the resolution of the detection.
// This prints figures and never judges them beyond met / NOT met against the goals.

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr xcb_keycode_t controlKey = 37;
constexpr xcb_keycode_t altKey = 64;
constexpr xcb_keycode_t escapeKey = 9;

struct Options {
    int samples = 100;
    int warmup = 3;
    xcb_keycode_t hotKey = 39;  // s, with Control and Alt
    xcb_keycode_t stepKey = 46; // l: the right half
    int timeoutMs = 2000;
    int pauseMs = 50; // after each sample; beyond Corvane's release delay every opening is a first one
    const char *label = "";
};

bool parseOptions(int argc, char **argv, Options &options)
{
    for (int index = 1; index < argc; ++index) {
        const std::string_view argument = argv[index];
        if (index + 1 >= argc)
            return false;
        const char *value = argv[++index];
        if (argument == "--samples")
            options.samples = std::max(1, std::atoi(value));
        else if (argument == "--warmup")
            options.warmup = std::max(0, std::atoi(value));
        else if (argument == "--hot-key")
            options.hotKey = xcb_keycode_t(std::atoi(value));
        else if (argument == "--timeout-ms")
            options.timeoutMs = std::max(1, std::atoi(value));
        else if (argument == "--pause-ms")
            options.pauseMs = std::max(0, std::atoi(value));
        else if (argument == "--label")
            options.label = value;
        else
            return false;
    }
    return true;
}

double milliseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

double percentile(std::vector<double> values, double which)
{
    if (values.empty())
        return std::nan("");
    std::sort(values.begin(), values.end());
    const auto rank = static_cast<std::size_t>(std::ceil(which / 100.0 * double(values.size()))); // nearest rank
    return values[std::clamp<std::size_t>(rank, 1, values.size()) - 1];
}

class OverlayBench
{
public:
    explicit OverlayBench(const Options &options) : m_options(options) {}
    ~OverlayBench()
    {
        if (m_connection)
            xcb_disconnect(m_connection);
    }

    bool connect()
    {
        m_connection = xcb_connect(nullptr, nullptr);
        if (xcb_connection_has_error(m_connection)) {
            std::fprintf(stderr, "overlay_frame_latency: cannot connect to $DISPLAY\n");
            return false;
        }
        const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        m_root = screen->root;
        // One screen at the root origin: the display's centre line, and the right half's.
        m_shownPixel = {int16_t(screen->width_in_pixels / 2), int16_t(screen->height_in_pixels / 5)};
        m_stepPixel = {int16_t(screen->width_in_pixels * 3 / 4), int16_t(screen->height_in_pixels / 5)};
        return true;
    }

    int run()
    {
        std::vector<double> floor;
        std::vector<double> shown;
        std::vector<double> step;
        int timeouts = 0;
        for (int round = 0; round < m_options.warmup + m_options.samples; ++round) {
            const auto floorStart = Clock::now();
            pixel(m_shownPixel);
            const double floorMs = milliseconds(Clock::now() - floorStart);
            const std::optional<std::pair<double, double>> sample = measure();
            if (round < m_options.warmup)
                continue;
            floor.push_back(floorMs);
            if (!sample) {
                ++timeouts;
                continue;
            }
            shown.push_back(sample->first);
            step.push_back(sample->second);
        }
        std::printf("Screen-section overlay %s(%d samples, %d timed out; ms)\n", m_options.label,
                    int(shown.size()), timeouts);
        std::printf("  %-40s %8s %8s %8s %8s\n", "", "p50", "p90", "p99", "max");
        printRow("floor: 1x1 GetImage round trip", floor);
        printRow("hot key -> first frame on screen", shown);
        printRow("arrow key -> redrawn frame", step);
        std::printf("RESULT samples=%d timeouts=%d floor_p50_ms=%.3f shown_p50_ms=%.2f shown_p99_ms=%.2f "
                    "step_p50_ms=%.2f step_p99_ms=%.2f\n",
                    int(shown.size()), timeouts, percentile(floor, 50), percentile(shown, 50), percentile(shown, 99),
                    percentile(step, 50), percentile(step, 99));
        return shown.empty() ? 1 : 0;
    }

private:
    // Times to the first frame and to the redrawn frame, or nothing when a frame never came.
    std::optional<std::pair<double, double>> measure()
    {
        const uint32_t shownBefore = pixel(m_shownPixel);
        const uint32_t stepBefore = pixel(m_stepPixel);
        fakeKey(XCB_KEY_PRESS, controlKey);
        fakeKey(XCB_KEY_PRESS, altKey);
        sync();
        const auto pressed = Clock::now();
        fakeKey(XCB_KEY_PRESS, m_options.hotKey);
        xcb_flush(m_connection);
        const bool appeared = waitForChange(m_shownPixel, shownBefore);
        const auto shown = Clock::now();
        for (const xcb_keycode_t key : {m_options.hotKey, altKey, controlKey})
            fakeKey(XCB_KEY_RELEASE, key);
        sync();
        bool stepped = false;
        auto stepPressed = Clock::now();
        if (appeared) {
            stepPressed = Clock::now();
            fakeKey(XCB_KEY_PRESS, m_options.stepKey);
            xcb_flush(m_connection);
            stepped = waitForChange(m_stepPixel, stepBefore);
        }
        const auto redrawn = Clock::now();
        fakeKey(XCB_KEY_RELEASE, m_options.stepKey);
        close(shownBefore, stepBefore);
        if (!appeared || !stepped)
            return std::nullopt;
        return std::make_pair(milliseconds(shown - pressed), milliseconds(redrawn - stepPressed));
    }

    // Escape, then wait until the screen shows what it did before and the keyboard is free.
    void close(uint32_t shownBefore, uint32_t stepBefore)
    {
        fakeKey(XCB_KEY_PRESS, escapeKey);
        fakeKey(XCB_KEY_RELEASE, escapeKey);
        sync();
        const auto deadline = Clock::now() + std::chrono::milliseconds(m_options.timeoutMs);
        while (Clock::now() < deadline) {
            if (pixel(m_shownPixel) == shownBefore && pixel(m_stepPixel) == stepBefore && keyboardIsFree())
                break;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        // The fade-out leaves timers behind for a moment; start each sample from quiet.
        std::this_thread::sleep_for(std::chrono::milliseconds(m_options.pauseMs));
    }

    bool waitForChange(xcb_point_t point, uint32_t before)
    {
        const auto deadline = Clock::now() + std::chrono::milliseconds(m_options.timeoutMs);
        while (Clock::now() < deadline)
            if (pixel(point) != before)
                return true;
        return false;
    }

    uint32_t pixel(xcb_point_t point)
    {
        std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> image(
            xcb_get_image_reply(m_connection,
                                xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_root, point.x, point.y, 1, 1,
                                              ~0u),
                                nullptr),
            &std::free);
        uint32_t value = 0;
        if (image && xcb_get_image_data_length(image.get()) >= int(sizeof value))
            std::memcpy(&value, xcb_get_image_data(image.get()), sizeof value);
        return value & 0xffffff;
    }

    bool keyboardIsFree()
    {
        std::unique_ptr<xcb_grab_keyboard_reply_t, decltype(&std::free)> grab(
            xcb_grab_keyboard_reply(m_connection,
                                    xcb_grab_keyboard(m_connection, 0, m_root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                                                      XCB_GRAB_MODE_ASYNC),
                                    nullptr),
            &std::free);
        const bool free = grab && grab->status == XCB_GRAB_STATUS_SUCCESS;
        if (free)
            xcb_ungrab_keyboard(m_connection, XCB_CURRENT_TIME);
        return free;
    }

    void fakeKey(uint8_t type, xcb_keycode_t key)
    {
        xcb_test_fake_input(m_connection, type, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    }

    void sync()
    {
        std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    }

    static void printRow(const char *label, const std::vector<double> &values)
    {
        if (values.empty()) {
            std::printf("  %-40s %8s\n", label, "no data");
            return;
        }
        std::printf("  %-40s %8.2f %8.2f %8.2f %8.2f\n", label, percentile(values, 50), percentile(values, 90),
                    percentile(values, 99), *std::max_element(values.begin(), values.end()));
    }

    Options m_options;
    xcb_connection_t *m_connection = nullptr;
    xcb_window_t m_root = XCB_NONE;
    xcb_point_t m_shownPixel{};
    xcb_point_t m_stepPixel{};
};

} // namespace

int main(int argc, char **argv)
{
    Options options;
    if (!parseOptions(argc, argv, options)) {
        std::fprintf(stderr, "usage: overlay_frame_latency [--samples N] [--warmup N] [--hot-key KEYCODE] "
                             "[--timeout-ms MS] [--pause-ms MS] [--label TEXT]\n");
        return 2;
    }
    OverlayBench bench(options);
    if (!bench.connect())
        return 1;
    return bench.run();
}
