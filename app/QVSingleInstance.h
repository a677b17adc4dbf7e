#pragma once

#include <QObject>
#include <QString>

#include <memory>

class QLocalServer;
class QLocalSocket;
class QLockFile;

// One Corvane per settings file: the first process to claim a settings file holds a
// lock and listens on a private local socket; a later one asks it to reopen and goes.
class QVSingleInstance final : public QObject
{
    Q_OBJECT

public:
    enum class Outcome { Claimed, AskedToReopen, Failed };

    explicit QVSingleInstance(const QString &settingsFilePath, QObject *parent = nullptr);
    ~QVSingleInstance() override;

    // Takes the lock and starts listening: Claimed. When another live instance holds
    // the lock, asks it to reopen instead, blocking a few seconds at most for its
    // acknowledgement: AskedToReopen. Failed with a reason otherwise.
    Outcome claimOrAskToReopen(QString *error);

Q_SIGNALS:
    // Emitted in the instance that holds the lock, once per request.
    void reopenRequested();

private:
    bool listen(QString *error);
    bool askToReopen(QString *error);
    void acceptConnections();
    void answer(QLocalSocket *socket);

    QString m_settingsFilePath;
    QString m_socketPath;
    std::unique_ptr<QLockFile> m_lock;
    std::unique_ptr<QLocalServer> m_server;
};
