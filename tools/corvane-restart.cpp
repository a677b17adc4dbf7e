// corvane-restart BINARY PID [ARGUMENT...]
//
// Waits until process PID has ended, then starts BINARY with the arguments in a
// session of its own. When PID does not end within the time limit, nothing is started:
// that is the restart that was called off while its parent lives on.
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <optional>
#include <signal.h>
#include <spawn.h>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{

constexpr int defaultTimeoutMilliseconds = 10000;
constexpr auto pollInterval = std::chrono::milliseconds(20);

enum ExitCode { started = 0, notStarted = 1, badArguments = 2 };

using Clock = std::chrono::steady_clock;

int usage()
{
    std::fputs("usage: corvane-restart BINARY PID [ARGUMENT...]\n"
               "Waits until process PID has ended, then starts BINARY with the arguments.\n",
        stderr);
    return badArguments;
}

std::optional<long long> parseNumber(std::string_view text)
{
    long long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::optional<pid_t> parsePid(std::string_view text)
{
    const std::optional<long long> value = parseNumber(text);
    if (!value || *value <= 0 || *value > 0x3fffffff) // above the kernel's PID_MAX_LIMIT
        return std::nullopt;
    return pid_t(*value);
}

int timeoutMilliseconds()
{
    const char *text = std::getenv("CORVANE_RESTART_TIMEOUT_MS");
    const std::optional<long long> value = text ? parseNumber(text) : std::nullopt;
    return value && *value > 0 && *value <= 3600000 ? int(*value) : defaultTimeoutMilliseconds;
}

// A zombie still answers kill(pid, 0) although it has ended: its parent has not reaped it yet.
bool isGoneOrZombie(pid_t pid)
{
    if (::kill(pid, 0) != 0 && errno == ESRCH)
        return true;
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string line;
    if (!std::getline(stat, line))
        return std::ifstream("/proc/self/stat").good(); // without /proc, kill's answer stands
    const std::size_t nameEnd = line.rfind(')');
    return nameEnd != std::string::npos && nameEnd + 2 < line.size() && line[nameEnd + 2] == 'Z';
}

// Polled rather than watched through a pid file descriptor: one way on every kernel,
// and a few checks a second cost nothing while the old process winds down.
bool waitForEnd(pid_t pid, int timeout)
{
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeout);
    for (;;) {
        if (isGoneOrZombie(pid))
            return true;
        if (Clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(pollInterval);
    }
}

// In a session of its own, so that whatever ends the old process's session spares the
// new one; posix_spawn reports a failed exec itself.
int start(char *binary, char **arguments)
{
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    for (const int descriptor : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO })
        ::posix_spawn_file_actions_addopen(&actions, descriptor, "/dev/null", O_RDWR, 0);
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    pid_t child = 0;
    const int error = ::posix_spawn(&child, binary, &actions, &attributes, arguments, environ);
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        std::fprintf(stderr, "corvane-restart: cannot start %s: %s\n", binary, std::strerror(error));
        return notStarted;
    }
    return started;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 3 || argv[1][0] == '\0')
        return usage();
    const std::optional<pid_t> pid = parsePid(argv[2]);
    if (!pid)
        return usage();
    const int timeout = timeoutMilliseconds();
    if (!waitForEnd(*pid, timeout)) {
        std::fprintf(
            stderr, "corvane-restart: process %d still runs after %d ms; nothing started\n", int(*pid), timeout);
        return notStarted;
    }
    // BINARY becomes its own argv[0], the remaining arguments follow.
    std::vector<char *> arguments { argv[1] };
    for (int index = 3; index < argc; ++index)
        arguments.push_back(argv[index]);
    arguments.push_back(nullptr);
    return start(argv[1], arguments.data());
}
