// Start-up time and memory of Corvane on the X display in $DISPLAY:
//   - from the start of the process to its hot keys being registered (tray mode,
//     settings not shown at launch), and to its settings window being mapped
//     (window mode, settings shown at launch): p50 and p90 of N starts each;
//   - resident memory once started in tray mode, and again after the settings
//     window was opened (by a second launch) and closed;
//   - wake-ups while idle after that.
//
//   startup_memory CORVANE WORK_DIR [STARTS]
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <poll.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{

using Clock = std::chrono::steady_clock;

struct Started {
    pid_t pid = -1;
    int stderrPipe = -1;
};

Started spawn(const std::string &corvane, const std::string &settings)
{
    int fds[2];
    if (pipe(fds) != 0)
        std::exit(1);
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(fds[1], STDERR_FILENO);
        close(fds[0]);
        close(fds[1]);
        execl(corvane.c_str(), corvane.c_str(), "--settings", settings.c_str(), static_cast<char *>(nullptr));
        _exit(127);
    }
    close(fds[1]);
    return { pid, fds[0] };
}

// Reads the child's log until the line appears; false after the deadline.
bool waitForLine(int fd, const char *line, std::string &seen, int timeoutMs = 20000)
{
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    while (seen.find(line) == std::string::npos) {
        const int left = int(std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count());
        if (left <= 0)
            return false;
        pollfd descriptor { fd, POLLIN, 0 };
        if (poll(&descriptor, 1, left) <= 0)
            return false;
        char buffer[4096];
        const ssize_t count = read(fd, buffer, sizeof buffer);
        if (count <= 0)
            return false;
        seen.append(buffer, size_t(count));
    }
    return true;
}

void stop(Started &process)
{
    if (process.pid <= 0)
        return;
    kill(process.pid, SIGTERM);
    int status = 0;
    waitpid(process.pid, &status, 0);
    close(process.stderrPipe);
    process.pid = -1;
}

void writeSettings(const std::string &path, int mode, bool stealth)
{
    std::ofstream file(path, std::ios::trunc);
    // Four controls with hot keys, a typical list.
    file << "{\"Application Mode\": " << mode << ", \"Stealth Mode\": " << (stealth ? "true" : "false")
         << ", \"Custom Controls\": [";
    const int keys[] = { 111, 113, 114, 116 };
    const int directions[] = { 3, 9, 5, 7 };
    for (int index = 0; index < 4; ++index)
        file << (index ? "," : "") << "{\"Action\": 31, \"Move Direction\": " << directions[index]
             << ", \"Move Delta\": 10, \"Hot Key\": {\"Identifier\": \"k" << index
             << "\", \"Visual Representation\": \"key\", \"Key Code\": " << keys[index]
             << ", \"Modifier Flags\": 786432}}";
    file << "]}\n";
}

struct MapWatcher {
    xcb_connection_t *connection = nullptr;
    xcb_window_t root = 0;

    MapWatcher()
    {
        connection = xcb_connect(nullptr, nullptr);
        if (xcb_connection_has_error(connection))
            std::exit(1);
        root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
        const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &mask);
        xcb_flush(connection);
    }
    ~MapWatcher() { xcb_disconnect(connection); }

    // The first ordinary (not override-redirect) top-level window that maps.
    xcb_window_t waitForMap(int timeoutMs = 20000)
    {
        const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
        while (Clock::now() < deadline) {
            while (xcb_generic_event_t *event = xcb_poll_for_event(connection)) {
                const bool map = (event->response_type & 0x7f) == XCB_MAP_NOTIFY;
                const auto *notify = reinterpret_cast<xcb_map_notify_event_t *>(event);
                const xcb_window_t window = map && !notify->override_redirect ? notify->window : 0;
                std::free(event);
                if (window)
                    return window;
            }
            pollfd descriptor { xcb_get_file_descriptor(connection), POLLIN, 0 };
            poll(&descriptor, 1, 10);
        }
        return 0;
    }

    void drain()
    {
        while (xcb_generic_event_t *event = xcb_poll_for_event(connection))
            std::free(event);
    }

    xcb_atom_t atom(const char *name)
    {
        xcb_intern_atom_reply_t *reply
            = xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, uint16_t(std::strlen(name)), name), nullptr);
        const xcb_atom_t result = reply ? reply->atom : XCB_ATOM_NONE;
        std::free(reply);
        return result;
    }

    // Closes the window as a window manager's close button does.
    void close(xcb_window_t window)
    {
        xcb_client_message_event_t message {};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = atom("WM_PROTOCOLS");
        message.data.data32[0] = atom("WM_DELETE_WINDOW");
        message.data.data32[1] = XCB_CURRENT_TIME;
        xcb_send_event(connection, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&message));
        xcb_flush(connection);
    }
};

long statusField(pid_t pid, const char *field)
{
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    std::string line;
    const size_t length = std::strlen(field);
    while (std::getline(status, line))
        if (line.compare(0, length, field) == 0)
            return std::atol(line.c_str() + length);
    return -1;
}

double percentile(std::vector<double> values, double fraction)
{
    if (values.empty())
        return 0.0;
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, size_t(fraction * double(values.size())))];
}

double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: startup_memory CORVANE WORK_DIR [STARTS]\n");
        return 2;
    }
    const std::string corvane = argv[1];
    const std::string settings = std::string(argv[2]) + "/startup-settings.json";
    const int starts = argc > 3 ? std::atoi(argv[3]) : 20;
    MapWatcher watcher;

    std::vector<double> toHotKeys, toWindow;
    for (int run = 0; run < starts; ++run) {
        writeSettings(settings, 1, true);
        std::string log;
        const auto begin = Clock::now();
        Started process = spawn(corvane, settings);
        if (waitForLine(process.stderrPipe, "started on ", log))
            toHotKeys.push_back(millisecondsSince(begin));
        stop(process);

        writeSettings(settings, 0, false);
        watcher.drain();
        const auto shown = Clock::now();
        process = spawn(corvane, settings);
        if (watcher.waitForMap())
            toWindow.push_back(millisecondsSince(shown));
        stop(process);
    }
    std::printf("start to hot keys registered (tray mode): p50 %.1f ms, p90 %.1f ms (%zu starts; goal < 150 ms)\n",
        percentile(toHotKeys, 0.5), percentile(toHotKeys, 0.9), toHotKeys.size());
    std::printf("start to settings window mapped (window mode): p50 %.1f ms, p90 %.1f ms (%zu starts; goal < 300 ms)\n",
        percentile(toWindow, 0.5), percentile(toWindow, 0.9), toWindow.size());

    writeSettings(settings, 1, true);
    std::string log;
    Started process = spawn(corvane, settings);
    if (!waitForLine(process.stderrPipe, "started on ", log))
        return 1;
    std::this_thread::sleep_for(std::chrono::seconds(2));
    std::printf("resident memory after start, tray icon, window never opened: %.1f MB (goal < 30 MB)\n",
        double(statusField(process.pid, "VmRSS:")) / 1024.0);

    // A second launch is how a person reopens the settings.
    watcher.drain();
    Started second = spawn(corvane, settings);
    const xcb_window_t window = watcher.waitForMap();
    int status = 0;
    waitpid(second.pid, &status, 0);
    close(second.stderrPipe);
    if (!window) {
        std::printf("the settings window did not open on a second launch\n");
        stop(process);
        return 1;
    }
    std::this_thread::sleep_for(std::chrono::seconds(1));
    watcher.close(window);
    std::this_thread::sleep_for(std::chrono::seconds(2));
    std::printf("resident memory after the window was opened and closed: %.1f MB (goal < 30 MB)\n",
        double(statusField(process.pid, "VmRSS:")) / 1024.0);

    const long before = statusField(process.pid, "voluntary_ctxt_switches:")
        + statusField(process.pid, "nonvoluntary_ctxt_switches:");
    std::this_thread::sleep_for(std::chrono::seconds(10));
    const long after = statusField(process.pid, "voluntary_ctxt_switches:")
        + statusField(process.pid, "nonvoluntary_ctxt_switches:");
    std::printf("wake-ups in 10 s idle after that: %ld (goal 0)\n", after - before);
    stop(process);
    return 0;
}
