#pragma once

#include <QFileSystemWatcher>
#include <QJsonObject>
#include <QObject>
#include <QString>
#include <QTimer>

// The per-user settings: one JSON document whose top-level keys are the setting
// names. Values are held in memory and kept in step with the file, so an edit
// made from outside takes effect; every change is written atomically at once.
class QVUserDefaults final : public QObject
{
    Q_OBJECT

public:
    explicit QVUserDefaults(const QString &filePath, QObject *parent = nullptr);

    // The store the application uses, set up by main (or by a test).
    static QVUserDefaults *standardUserDefaults();
    static void setStandardUserDefaults(QVUserDefaults *defaults);
    // $CORVANE_SETTINGS, else $XDG_CONFIG_HOME/corvane/settings.json.
    static QString defaultFilePath();

    QString filePath() const { return m_filePath; }

    QJsonValue objectForKey(const QString &key) const;
    qint64 integerForKey(const QString &key) const;
    bool boolForKey(const QString &key) const;

    // Stores the value and writes the file; a null or undefined value removes the key.
    void setObject(const QJsonValue &value, const QString &key);
    void removeObjectForKey(const QString &key);

    // Reads the file again now; false when it could not be parsed.
    bool reload();

Q_SIGNALS:
    // The file was changed from outside and its values are now in effect.
    void changedExternally();

private:
    bool write();
    void watch();
    void fileMayHaveChanged();
    void moveBrokenFileAside(const QString &reason);

    QString m_filePath;
    QJsonObject m_values;
    QByteArray m_lastContents; // as last read or written, to tell our own writes apart
    bool m_writeProtected = false; // a broken file that could not be moved aside is never overwritten
    QFileSystemWatcher m_watcher;
    QTimer m_settleTimer; // lets an outside writer finish before the file is read
};
