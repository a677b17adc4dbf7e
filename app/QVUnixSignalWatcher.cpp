#include "QVUnixSignalWatcher.h"

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int signalSockets[2] = {-1, -1};

void forwardSignal(int signalNumber)
{
    const char byte = static_cast<char>(signalNumber);
    // Only async-signal-safe calls here: the loop does the rest.
    [[maybe_unused]] const ssize_t written = ::write(signalSockets[0], &byte, 1);
}

} // namespace

QVUnixSignalWatcher::QVUnixSignalWatcher(QObject *parent) : QObject(parent)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, signalSockets) != 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(signalSockets[1], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &QVUnixSignalWatcher::readSignal);
    struct sigaction action = {};
    action.sa_handler = forwardSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP})
        sigaction(signalNumber, &action, nullptr);
}

QVUnixSignalWatcher::~QVUnixSignalWatcher()
{
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP})
        std::signal(signalNumber, SIG_DFL);
    m_notifier.reset();
    for (int &socket : signalSockets) {
        if (socket >= 0)
            ::close(socket);
        socket = -1;
    }
}

void QVUnixSignalWatcher::readSignal()
{
    char byte = 0;
    if (::read(signalSockets[1], &byte, 1) == 1)
        Q_EMIT terminationRequested(byte);
}
