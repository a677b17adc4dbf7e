#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

// Turns SIGINT, SIGTERM and SIGHUP into a signal on the event loop, where the
// application can quit the ordinary way and save what quitting saves.
class QVUnixSignalWatcher final : public QObject
{
    Q_OBJECT

public:
    explicit QVUnixSignalWatcher(QObject *parent = nullptr);
    ~QVUnixSignalWatcher() override;

Q_SIGNALS:
    void terminationRequested(int signalNumber);

private:
    void readSignal();

    std::unique_ptr<QSocketNotifier> m_notifier;
};
