#include "QVUserDefaults.h"

#include "QVDictionaryExtensions.h"
#include "QVLog.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>
#include <QStandardPaths>
#include <QThread>

namespace
{
QVUserDefaults *standardDefaults = nullptr;
// How long the file must have been quiet before it is read.
constexpr int settleMilliseconds = 300;

QString settingsKept(const QJsonObject &values)
{
    return values.isEmpty() ? QStringLiteral("empty settings") : QStringLiteral("the settings it had");
}

} // namespace

QVUserDefaults::QVUserDefaults(const QString &filePath, QObject *parent)
    : QObject(parent)
    , m_filePath(QFileInfo(filePath).absoluteFilePath())
{
    readAtStart();
    // Editors that write in place leave the file empty or half-written for a moment,
    // and a slow one pauses between its writes: every change starts the wait again.
    m_settleTimer.setSingleShot(true);
    m_settleTimer.setInterval(settleMilliseconds);
    connect(&m_settleTimer, &QTimer::timeout, this, &QVUserDefaults::fileMayHaveChanged);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, &m_settleTimer, qOverload<>(&QTimer::start));
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_settleTimer, qOverload<>(&QTimer::start));
    watch();
}

QVUserDefaults *QVUserDefaults::standardUserDefaults()
{
    return standardDefaults;
}

void QVUserDefaults::setStandardUserDefaults(QVUserDefaults *defaults)
{
    standardDefaults = defaults;
}

QString QVUserDefaults::defaultFilePath()
{
    const QString fromEnvironment = qEnvironmentVariable("CORVANE_SETTINGS");
    return fromEnvironment.isEmpty() ? standardFilePath() : fromEnvironment;
}

QString QVUserDefaults::standardFilePath()
{
    // A relative $XDG_CONFIG_HOME is invalid and ignored, as the autostart folder ignores it.
    QString configHome = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (!QDir::isAbsolutePath(configHome))
        configHome = QDir::homePath() + QStringLiteral("/.config");
    return configHome + QStringLiteral("/corvane/settings.json");
}

QJsonValue QVUserDefaults::objectForKey(const QString &key) const
{
    return m_values.value(key);
}

qint64 QVUserDefaults::integerForKey(const QString &key) const
{
    return QVIntegerForKey(m_values, key);
}

bool QVUserDefaults::boolForKey(const QString &key) const
{
    return QVBoolForKey(m_values, key);
}

bool QVUserDefaults::setObject(const QJsonValue &value, const QString &key)
{
    if (value.isNull() || value.isUndefined())
        m_values.remove(key);
    else
        m_values.insert(key, value);
    return write();
}

bool QVUserDefaults::removeObjectForKey(const QString &key)
{
    return setObject(QJsonValue(), key);
}

void QVUserDefaults::keepFileAsideBeforeNextWrite(const QString &problem)
{
    if (m_lastContents.isEmpty())
        return; // nothing read, nothing to lose
    m_contentsToKeepAside = m_lastContents;
    m_keepAsideProblem = problem;
}

void QVUserDefaults::prepareForFinalWrite()
{
    // Read whether or not a change was seen: its notice may not have arrived yet.
    m_settleTimer.stop();
    Reading reading = readFile();
    if (reading.outcome == Outcome::Unparsable && reading.contents != m_unparsableContents) {
        QThread::msleep(settleMilliseconds); // the same second look as while running
        reading = readFile();
    }
    if (reading.outcome == Outcome::Unparsable)
        moveBrokenFileAside(reading.problem);
    else
        takeReading(reading);
    if (reading.outcome == Outcome::Parsed)
        Q_EMIT changedExternally();
}

QVUserDefaults::Reading QVUserDefaults::readFile() const
{
    Reading reading;
    QFile file(m_filePath);
    if (!file.exists())
        return reading;
    if (!file.open(QIODevice::ReadOnly)) {
        reading.outcome = Outcome::Unreadable;
        reading.problem = file.errorString();
        return reading;
    }
    reading.contents = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        reading.outcome = Outcome::Unreadable;
        reading.problem = file.errorString();
        return reading;
    }
    if (reading.contents.isEmpty()) // holds nothing to lose, like a missing file
        return reading;
    if (reading.contents == m_lastContents) {
        reading.outcome = Outcome::Unchanged;
        return reading;
    }
    QJsonParseError error {};
    const QJsonDocument document = QJsonDocument::fromJson(reading.contents, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        reading.outcome = Outcome::Unparsable;
        reading.problem = error.error != QJsonParseError::NoError
            ? QStringLiteral("%1 at offset %2").arg(error.errorString()).arg(error.offset)
            : QStringLiteral("the top level is not an object");
        return reading;
    }
    reading.outcome = Outcome::Parsed;
    reading.values = document.object();
    return reading;
}

void QVUserDefaults::readAtStart()
{
    const Reading reading = readFile();
    if (reading.outcome == Outcome::Unparsable) {
        m_unparsableContents = reading.contents;
        moveBrokenFileAside(reading.problem);
    } else {
        takeReading(reading);
    }
}

void QVUserDefaults::fileMayHaveChanged()
{
    watch();
    const Reading reading = readFile();
    if (reading.outcome == Outcome::Unparsable)
        fileIsUnparsable(reading);
    else
        takeReading(reading);
    if (reading.outcome == Outcome::Parsed)
        Q_EMIT changedExternally();
}

void QVUserDefaults::takeReading(const Reading &reading)
{
    m_unparsableContents.clear();
    switch (reading.outcome) {
    case Outcome::Parsed:
        m_values = reading.values;
        m_lastContents = reading.contents;
        setFileState(FileState::Fine);
        break;
    case Outcome::Unreadable:
        setFileState(FileState::Unreadable,
            QStringLiteral("settings file %1 cannot be read (%2); Corvane goes on with %3 and does not "
                           "write over it")
                .arg(m_filePath, reading.problem, settingsKept(m_values)));
        break;
    case Outcome::Unparsable: // handled by the callers
    case Outcome::Unchanged:
    case Outcome::Absent:
        setFileState(FileState::Fine); // nothing in the file that a write could lose
        break;
    }
}

void QVUserDefaults::fileIsUnparsable(const Reading &reading)
{
    if (reading.contents != m_unparsableContents) {
        // Read again once the file has been quiet a while longer before judging it.
        m_unparsableContents = reading.contents;
        if (m_fileState != FileState::Unparsable)
            setFileState(FileState::Suspect);
        m_settleTimer.start();
        return;
    }
    setFileState(FileState::Unparsable,
        QStringLiteral("settings file %1 cannot be read (%2); it is left as it is, and Corvane keeps the "
                       "settings it had and does not write over the file while it stays so")
            .arg(m_filePath, reading.problem));
}

void QVUserDefaults::setFileState(FileState state, const QString &message)
{
    if (state != m_fileState && !message.isEmpty())
        QVLog(message);
    m_fileState = state;
}

bool QVUserDefaults::write()
{
    if (m_fileState != FileState::Fine)
        return false; // the log said so when the file went bad; the values stay in memory
    if (!QDir().mkpath(QFileInfo(m_filePath).absolutePath())) {
        QVLog(QStringLiteral("cannot create the folder of settings file %1").arg(m_filePath));
        return false;
    }
    if (!keepContentsAside())
        return false;
    const QByteArray contents = QJsonDocument(m_values).toJson(QJsonDocument::Indented);
    QSaveFile file(m_filePath);
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size() || !file.commit()) {
        QVLog(QStringLiteral("cannot write settings file %1: %2").arg(m_filePath, file.errorString()));
        return false;
    }
    m_lastContents = contents;
    watch();
    return true;
}

bool QVUserDefaults::keepContentsAside()
{
    if (m_contentsToKeepAside.isEmpty())
        return true;
    const QString path = freeBrokenFilePath();
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly)
        || file.write(m_contentsToKeepAside) != m_contentsToKeepAside.size() || !file.flush()) {
        QVLog(QStringLiteral("settings file %1 not written: it cannot be kept first as %2 (%3)")
                  .arg(m_filePath, path, file.errorString()));
        return false;
    }
    QVLog(QStringLiteral("settings file %1 was kept as it was in %2 before Corvane wrote it (%3)")
              .arg(m_filePath, path, m_keepAsideProblem));
    m_contentsToKeepAside.clear();
    return true;
}

void QVUserDefaults::watch()
{
    const QString directory = QFileInfo(m_filePath).absolutePath();
    if (QFileInfo::exists(directory) && !m_watcher.directories().contains(directory))
        m_watcher.addPath(directory);
    // A rename over the file leaves the watch on the file that was replaced:
    // watch the path afresh so that in-place writes to the new one are seen.
    if (m_watcher.files().contains(m_filePath))
        m_watcher.removePath(m_filePath);
    if (QFileInfo(m_filePath).isReadable()) // a file closed to us cannot be watched; its folder still is
        m_watcher.addPath(m_filePath);
}

void QVUserDefaults::moveBrokenFileAside(const QString &problem)
{
    const QString brokenPath = freeBrokenFilePath();
    if (!QFile::rename(m_filePath, brokenPath)) {
        setFileState(FileState::CannotMoveAside,
            QStringLiteral("settings file %1 cannot be read (%2) nor moved aside; it is left untouched")
                .arg(m_filePath, problem));
        return;
    }
    QVLog(QStringLiteral("settings file %1 cannot be read (%2); it was moved to %3 and Corvane goes on with %4")
              .arg(m_filePath, problem, brokenPath, settingsKept(m_values)));
    m_lastContents.clear();
    m_unparsableContents.clear();
    setFileState(FileState::Fine);
}

QString QVUserDefaults::freeBrokenFilePath() const
{
    const QString stem = m_filePath + QStringLiteral(".broken-")
        + QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString path = stem;
    for (int number = 2; QFileInfo::exists(path); ++number)
        path = stem + QStringLiteral("-%1").arg(number);
    return path;
}
