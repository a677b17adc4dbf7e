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
    explicit QVSingleInstance(const QString &settingsFilePath, QObject *parent = nullptr);
    ~QVSingleInstance() override;

    // Takes the lock and starts listening. False with a reason when another live
    // instance holds it (isHeldByAnotherInstance() then answers true) or when the
    // private directory, the lock or the socket cannot be had.
    bool claim(QString *error);
    bool isHeldByAnotherInstance() const { return m_heldByAnother; }
    // Asks the instance that holds the lock to reopen; true once it acknowledged.
    // Blocks for a few seconds at most.
    bool askRunningInstanceToReopen(QString *error);

    // The user's private directory for the lock and the socket, created if need be;
    // empty with a reason when neither the runtime directory nor the fallback will do.
    static QString privateDirectory(QString *error);

Q_SIGNALS:
    // Emitted in the instance that holds the lock, once per request.
    void reopenRequested();

private:
    bool preparePaths(QString *error);
    bool listen(QString *error);
    void acceptConnections();
    void answer(QLocalSocket *socket);

    QString m_settingsFilePath;
    QString m_lockPath;
    QString m_socketPath;
    bool m_heldByAnother = false;
    std::unique_ptr<QLockFile> m_lock;
    std::unique_ptr<QLocalServer> m_server;
};
