#include "QVSingleInstance.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QThread>
#include <QTimer>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr int connectMilliseconds = 3000;
constexpr int answerMilliseconds = 3000;
constexpr int retryMilliseconds = 50;
// A peer that connects and never says a full line is dropped after this.
constexpr int idlePeerMilliseconds = 5000;
// Room for a control's title, percent-encoded.
constexpr qint64 longestRequest = 4096;
const QByteArray reopenRequest = QByteArrayLiteral("reopen");
const QByteArray performRequest = QByteArrayLiteral("perform ");
const QByteArray releaseRequest = QByteArrayLiteral("release ");
const QByteArray acknowledgement = QByteArrayLiteral("ok");
const QByteArray refusal = QByteArrayLiteral("error ");

QString systemError(int number)
{
    return QString::fromLocal8Bit(std::strerror(number));
}

// Made if missing, then believed only when it is a real directory of this user that
// nobody else may enter: another user could otherwise plant a socket that answers for us.
bool makePrivateDirectory(const QString &path, QString *reason)
{
    const QByteArray native = QFile::encodeName(path);
    if (::mkdir(native.constData(), 0700) != 0 && errno != EEXIST) {
        *reason = QStringLiteral("cannot create %1: %2").arg(path, systemError(errno));
        return false;
    }
    struct stat status = {};
    if (::lstat(native.constData(), &status) != 0) {
        *reason = QStringLiteral("cannot read %1: %2").arg(path, systemError(errno));
        return false;
    }
    if (!S_ISDIR(status.st_mode))
        *reason = QStringLiteral("%1 is not a directory").arg(path);
    else if (status.st_uid != ::geteuid())
        *reason = QStringLiteral("%1 belongs to another user").arg(path);
    else if ((status.st_mode & 077) != 0)
        *reason = QStringLiteral("%1 is open to other users (mode %2)").arg(path).arg(status.st_mode & 0777, 3, 8);
    else
        return true;
    return false;
}

// The user's private directory for the lock and the socket, created if need be;
// empty with a reason when neither the runtime directory nor the fallback will do.
QString privateDirectory(QString *error)
{
    QString runtimeReason;
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (QDir::isAbsolutePath(runtime) && QFileInfo(runtime).isDir()) {
        const QString directory = QDir::cleanPath(runtime + QStringLiteral("/corvane"));
        if (makePrivateDirectory(directory, &runtimeReason))
            return directory;
    }
    QString fallbackReason;
    const QString fallback = QDir::cleanPath(QDir::tempPath() + QStringLiteral("/corvane-%1").arg(::geteuid()));
    if (makePrivateDirectory(fallback, &fallbackReason))
        return fallback;
    *error = runtimeReason.isEmpty() ? fallbackReason : runtimeReason + QStringLiteral("; ") + fallbackReason;
    return {};
}

} // namespace

QVSingleInstance::QVSingleInstance(const QString &settingsFilePath, QObject *parent)
    : QObject(parent)
    , m_settingsFilePath(settingsFilePath)
{
}

QVSingleInstance::~QVSingleInstance() = default;

bool QVSingleInstance::preparePaths(QString *lockPath, QString *error)
{
    const QString directory = privateDirectory(error);
    if (directory.isEmpty())
        return false;
    // Two spellings of one file are one instance; the hash keeps the socket path short
    // (a local socket's path has room for 107 bytes only).
    const QString settings = QDir::cleanPath(QFileInfo(m_settingsFilePath).absoluteFilePath());
    const QString name
        = QString::fromLatin1(QCryptographicHash::hash(settings.toUtf8(), QCryptographicHash::Sha256).toHex().left(24));
    *lockPath = directory + u'/' + name + QStringLiteral(".lock");
    m_socketPath = directory + u'/' + name + QStringLiteral(".socket");
    return true;
}

QVSingleInstance::Outcome QVSingleInstance::claimOrAskToReopen(QString *error)
{
    QString lockPath;
    if (!preparePaths(&lockPath, error))
        return Outcome::Failed;

    auto lock = std::make_unique<QLockFile>(lockPath);
    // A lock is stale only when its process is gone; its age never counts, so a
    // long-running owner is never robbed.
    lock->setStaleLockTime(0);
    if (!lock->tryLock(0)) {
        if (lock->error() != QLockFile::LockFailedError) {
            *error = QStringLiteral("cannot lock %1").arg(lockPath);
            return Outcome::Failed;
        }
        if (askToReopen(error))
            return Outcome::AskedToReopen;
        *error = QStringLiteral("another Corvane uses %1 but did not answer: %2").arg(m_settingsFilePath, *error);
        return Outcome::Failed;
    }
    m_lock = std::move(lock);
    if (!listen(error)) {
        m_lock.reset();
        return Outcome::Failed;
    }
    return Outcome::Claimed;
}

bool QVSingleInstance::askToPerform(const QString &name, bool release, QString *error)
{
    QString lockPath;
    if (!preparePaths(&lockPath, error))
        return false;
    // A lock this process can take is held by no running Corvane.
    QLockFile lock(lockPath);
    lock.setStaleLockTime(0);
    if (lock.tryLock(0)) {
        lock.unlock();
        *error = QStringLiteral("no Corvane is running with the settings %1").arg(m_settingsFilePath);
        return false;
    }
    QByteArray answer;
    if (!request((release ? releaseRequest : performRequest) + name.toUtf8().toPercentEncoding(), &answer, error)) {
        *error = QStringLiteral("the running Corvane did not answer: %1").arg(*error);
        return false;
    }
    if (answer == acknowledgement)
        return true;
    *error = answer.startsWith(refusal) ? QString::fromUtf8(answer.mid(refusal.size()))
                                        : QStringLiteral("unexpected answer \"%1\"").arg(QString::fromUtf8(answer));
    return false;
}

bool QVSingleInstance::listen(QString *error)
{
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    // Whoever holds the lock owns the name: a socket file still there is a crashed owner's.
    QLocalServer::removeServer(m_socketPath);
    if (!m_server->listen(m_socketPath)) {
        *error = QStringLiteral("cannot listen on %1: %2").arg(m_socketPath, m_server->errorString());
        m_server.reset();
        return false;
    }
    connect(m_server.get(), &QLocalServer::newConnection, this, &QVSingleInstance::acceptConnections);
    return true;
}

void QVSingleInstance::acceptConnections()
{
    while (QLocalSocket *socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { answer(socket); });
        QTimer::singleShot(idlePeerMilliseconds, socket, [socket] {
            socket->abort();
            socket->deleteLater();
        });
        answer(socket);
    }
}

void QVSingleInstance::answer(QLocalSocket *socket)
{
    if (socket->state() != QLocalSocket::ConnectedState)
        return;
    if (!socket->canReadLine()) {
        if (socket->bytesAvailable() > longestRequest)
            socket->abort();
        return;
    }
    const QByteArray request = socket->readLine(longestRequest + 1).trimmed();
    socket->write(answerTo(request) + '\n');
    socket->disconnectFromServer();
}

QByteArray QVSingleInstance::answerTo(const QByteArray &request)
{
    if (request == reopenRequest) {
        Q_EMIT reopenRequested();
        return acknowledgement;
    }
    const bool release = request.startsWith(releaseRequest);
    if (!release && !request.startsWith(performRequest))
        return QByteArrayLiteral("unknown request");
    if (!m_performHandler)
        return refusal + QByteArrayLiteral("this Corvane performs no controls on request");
    const QString name = QString::fromUtf8(
        QByteArray::fromPercentEncoding(request.mid(release ? releaseRequest.size() : performRequest.size())));
    const QString problem = m_performHandler(name, release);
    return problem.isEmpty() ? acknowledgement : refusal + problem.toUtf8().replace('\n', ' ');
}

bool QVSingleInstance::askToReopen(QString *error)
{
    QByteArray answer;
    if (!request(reopenRequest, &answer, error))
        return false;
    if (answer != acknowledgement) {
        *error = QStringLiteral("unexpected answer \"%1\"").arg(QString::fromUtf8(answer));
        return false;
    }
    return true;
}

bool QVSingleInstance::request(const QByteArray &line, QByteArray *answer, QString *error)
{
    QLocalSocket socket;
    // The owner takes the lock a moment before it listens: keep knocking for a while.
    const QDeadlineTimer connectDeadline(connectMilliseconds);
    for (;;) {
        socket.connectToServer(m_socketPath);
        if (socket.waitForConnected(int(connectDeadline.remainingTime())))
            break;
        if (connectDeadline.hasExpired()) {
            *error = socket.errorString();
            return false;
        }
        socket.abort();
        QThread::msleep(retryMilliseconds);
    }
    socket.write(line + '\n');
    // Its event loop may still be busy starting; the answer gets a time of its own.
    const QDeadlineTimer answerDeadline(answerMilliseconds);
    while (!socket.canReadLine()) {
        if (!socket.waitForReadyRead(int(answerDeadline.remainingTime()))) {
            *error = socket.state() == QLocalSocket::ConnectedState
                ? QStringLiteral("no answer within %1 s").arg(answerMilliseconds / 1000)
                : QStringLiteral("it closed the connection");
            return false;
        }
    }
    *answer = socket.readLine(longestRequest).trimmed();
    return true;
}
