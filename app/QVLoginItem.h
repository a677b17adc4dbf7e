#pragma once

#include <QString>
#include <QStringList>

class QVDesktopEntry;

// Starting at login through XDG Autostart: a .desktop file in the autostart folder
// whose Exec runs this binary (with --settings FILE unless the settings are the default).
// Entries of other copies of corvane are purged; entries of other programs are never touched.
class QVLoginItem final
{
public:
    // settingsPath empty: the default settings file, started without --settings.
    QVLoginItem(const QString &binaryPath, const QString &settingsPath,
        const QString &autostartDirectory = defaultAutostartDirectory());

    // For the running corvane and the settings file it uses; a file at the default
    // place ($XDG_CONFIG_HOME/corvane/settings.json) is left out of the Exec line.
    static QVLoginItem forRunningBinary(const QString &settingsPath);
    // $XDG_CONFIG_HOME/autostart, by default ~/.config/autostart.
    static QString defaultAutostartDirectory();

    // True when an entry of this binary and settings file exists and the desktop has not disabled it.
    bool isLoginItem() const;
    // Enabling: true when an entry of ours is kept or written. Disabling: true only
    // when an entry of ours was removed.
    bool setLoginItem(bool enable);

private:
    enum class Match { Ours, SameName, Other };

    Match match(const QVDesktopEntry &entry) const;
    QStringList entryFiles() const;
    QString freeFileName() const;
    QString entryContents() const;
    bool writeEntry(const QString &path) const;

    QString m_binaryPath;
    QString m_settingsPath;
    QString m_directory;
};
