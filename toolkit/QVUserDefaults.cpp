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

namespace {
QVUserDefaults *standardDefaults = nullptr;
}

QVUserDefaults::QVUserDefaults(const QString &filePath, QObject *parent)
    : QObject(parent), m_filePath(QFileInfo(filePath).absoluteFilePath())
{
    reload();
    // Editors that write in place leave the file empty or half-written for a moment.
    m_settleTimer.setSingleShot(true);
    m_settleTimer.setInterval(150);
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
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
    QString configHome = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (configHome.isEmpty())
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

void QVUserDefaults::setObject(const QJsonValue &value, const QString &key)
{
    if (value.isNull() || value.isUndefined())
        m_values.remove(key);
    else
        m_values.insert(key, value);
    write();
}

void QVUserDefaults::removeObjectForKey(const QString &key)
{
    setObject(QJsonValue(), key);
}

bool QVUserDefaults::reload()
{
    QFile file(m_filePath);
    if (!file.exists()) {
        m_lastContents.clear();
        return true; // first launch: every key absent
    }
    if (!file.open(QIODevice::ReadOnly)) {
        QVLog(QStringLiteral("cannot read settings file %1: %2").arg(m_filePath, file.errorString()));
        return false;
    }
    const QByteArray contents = file.readAll();
    if (contents == m_lastContents)
        return true;
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(contents, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        // Keep what is in memory: a broken file must cost the user nothing.
        moveBrokenFileAside(error.error != QJsonParseError::NoError
                                ? QStringLiteral("%1 at offset %2").arg(error.errorString()).arg(error.offset)
                                : QStringLiteral("the top level is not an object"));
        m_lastContents.clear();
        return false;
    }
    m_values = document.object();
    m_lastContents = contents;
    m_writeProtected = false;
    return true;
}

bool QVUserDefaults::write()
{
    if (m_writeProtected) {
        QVLog(QStringLiteral("settings not written: %1 cannot be read and is left as it is").arg(m_filePath));
        return false;
    }
    if (!QDir().mkpath(QFileInfo(m_filePath).absolutePath())) {
        QVLog(QStringLiteral("cannot create the folder of settings file %1").arg(m_filePath));
        return false;
    }
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

void QVUserDefaults::watch()
{
    const QString directory = QFileInfo(m_filePath).absolutePath();
    if (QFileInfo::exists(directory) && !m_watcher.directories().contains(directory))
        m_watcher.addPath(directory);
    // A rename over the file drops it from the watch list: add it back each time.
    if (QFileInfo::exists(m_filePath) && !m_watcher.files().contains(m_filePath))
        m_watcher.addPath(m_filePath);
}

void QVUserDefaults::fileMayHaveChanged()
{
    watch();
    const QByteArray before = m_lastContents;
    if (reload() && m_lastContents != before && !m_lastContents.isEmpty())
        Q_EMIT changedExternally();
}

void QVUserDefaults::moveBrokenFileAside(const QString &reason)
{
    const QString brokenPath = m_filePath + QStringLiteral(".broken-")
        + QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    if (QFile::rename(m_filePath, brokenPath))
        QVLog(QStringLiteral("settings file %1 cannot be read (%2); it was moved to %3 and Corvane goes on with %4")
                  .arg(m_filePath, reason, brokenPath,
                       m_values.isEmpty() ? QStringLiteral("empty settings") : QStringLiteral("the settings it had")));
    else {
        m_writeProtected = true;
        QVLog(QStringLiteral("settings file %1 cannot be read (%2) nor moved aside; it is left untouched")
                  .arg(m_filePath, reason));
    }
}
