#pragma once

#include <QFileSystemWatcher>
#include <QJsonObject>
#include <QObject>
#include <QString>
#include <QTimer>

// The per-user settings: one JSON document whose top-level keys are the setting
// names. Values are held in memory and kept in step with the file, so an edit
// made from outside takes effect; every change is written atomically at once.
// A file that cannot be read or parsed is never written over.
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
    // $XDG_CONFIG_HOME/corvane/settings.json, where a login session finds the settings by itself.
    static QString standardFilePath();

    QString filePath() const { return m_filePath; }

    QJsonValue objectForKey(const QString &key) const;
    qint64 integerForKey(const QString &key) const;
    bool boolForKey(const QString &key) const;

    // Stores the value and writes the file; a null or undefined value removes the key.
    // False when the file was not written; the value is kept in memory all the same.
    bool setObject(const QJsonValue &value, const QString &key);
    bool removeObjectForKey(const QString &key);

    // False while the file cannot be read, or while an outside edit leaves it
    // unparsable: writes then leave it alone.
    bool mayWriteFile() const { return m_fileState == FileState::Fine; }
    // Has the file, as last read, copied to a broken-file name before the next
    // write, for a reader that found in it values it cannot keep.
    void keepFileAsideBeforeNextWrite(const QString &problem);
    // Before the last write, at quit: takes in an outside change not yet read, and
    // moves a file that still cannot be parsed aside, as at start.
    void prepareForFinalWrite();

Q_SIGNALS:
    // The file was changed from outside and its values are now in effect.
    void changedExternally();

private:
    enum class FileState {
        Fine,
        Unreadable, // no read permission, an I/O error
        Suspect, // unparsable once: a writer may not be done yet
        Unparsable, // unparsable twice in a row while running
        CannotMoveAside, // broken, and it could not be moved out of the way
    };
    enum class Outcome { Absent, Unchanged, Parsed, Unreadable, Unparsable };
    struct Reading {
        Outcome outcome = Outcome::Absent;
        QByteArray contents;
        QJsonObject values;
        QString problem;
    };

    Reading readFile() const;
    void readAtStart();
    void fileMayHaveChanged();
    void takeReading(const Reading &reading);
    void fileIsUnparsable(const Reading &reading);
    void setFileState(FileState state, const QString &message = {});
    bool write();
    bool keepContentsAside();
    void watch();
    void moveBrokenFileAside(const QString &problem);
    QString freeBrokenFilePath() const;

    QString m_filePath;
    QJsonObject m_values;
    QByteArray m_lastContents; // as last read or written, to tell our own writes apart
    FileState m_fileState = FileState::Fine;
    QByteArray m_unparsableContents; // as last seen unparsable, for the second look
    QByteArray m_contentsToKeepAside;
    QString m_keepAsideProblem;
    QFileSystemWatcher m_watcher;
    QTimer m_settleTimer; // lets an outside writer finish before the file is read
};
