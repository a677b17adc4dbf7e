#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class QLocalServer;
class QLocalSocket;
class QLockFile;

// One Corvane per settings file: the first process to claim a settings file holds a
// lock and listens on a private local socket; a later one asks it to reopen and goes.
// The same channel carries requests to perform a control, from the command line.
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
    // From another process: asks the instance that holds the lock to perform the control
    // named (or, with release, to end its repetition). False with a reason when none
    // runs, none answers, or the instance found nothing to perform.
    bool askToPerform(const QString &name, bool release, QString *error);

    // In the instance that holds the lock: performs a request, answering an empty
    // string on success, else why not.
    using PerformHandler = std::function<QString(const QString &name, bool release)>;
    void setPerformHandler(PerformHandler handler) { m_performHandler = std::move(handler); }

Q_SIGNALS:
    // Emitted in the instance that holds the lock, once per request.
    void reopenRequested();

private:
    // The directory, lock and socket of this settings file; false with a reason.
    bool preparePaths(QString *lockPath, QString *error);
    bool listen(QString *error);
    bool askToReopen(QString *error);
    // Sends one request line and reads the one-line answer.
    bool request(const QByteArray &line, QByteArray *answer, QString *error);
    QByteArray answerTo(const QByteArray &request);
    void acceptConnections();
    void answer(QLocalSocket *socket);

    QString m_settingsFilePath;
    QString m_socketPath;
    std::unique_ptr<QLockFile> m_lock;
    std::unique_ptr<QLocalServer> m_server;
    PerformHandler m_performHandler;
};
