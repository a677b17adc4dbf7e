#include "QVLoginItem.h"

#include "QVDesktopEntry.h"
#include "QVUserDefaults.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace
{

const QString programName = QStringLiteral("corvane");
const QString settingsOption = QStringLiteral("--settings");

QString cleanAbsolute(const QString &path)
{
    return path.isEmpty() ? QString() : QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

// The settings file an Exec line names, empty when it names none.
QString settingsArgument(const QStringList &arguments)
{
    const QString prefix = settingsOption + u'=';
    for (qsizetype index = 1; index < arguments.size(); ++index) {
        if (arguments[index] == settingsOption && index + 1 < arguments.size())
            return cleanAbsolute(arguments[index + 1]);
        if (arguments[index].startsWith(prefix))
            return cleanAbsolute(arguments[index].mid(prefix.size()));
    }
    return {};
}

// A bare program name is looked up on PATH, as the session would.
QString programPath(const QString &program)
{
    if (program.contains(u'/'))
        return cleanAbsolute(program);
    return cleanAbsolute(QStandardPaths::findExecutable(program));
}

// Switched off by the user through the desktop's own settings.
bool isDisabled(const QVDesktopEntry &entry)
{
    return entry.booleanValue(QStringLiteral("Hidden"), false)
        || !entry.booleanValue(QStringLiteral("X-GNOME-Autostart-enabled"), true);
}

} // namespace

QVLoginItem::QVLoginItem(const QString &binaryPath, const QString &settingsPath, const QString &autostartDirectory)
    : m_binaryPath(cleanAbsolute(binaryPath))
    , m_settingsPath(cleanAbsolute(settingsPath))
    , m_directory(autostartDirectory)
{
}

QVLoginItem QVLoginItem::forRunningBinary(const QString &settingsPath)
{
    const QString settings
        = cleanAbsolute(settingsPath) == cleanAbsolute(QVUserDefaults::standardFilePath()) ? QString() : settingsPath;
    return QVLoginItem(QCoreApplication::applicationFilePath(), settings);
}

QString QVLoginItem::defaultAutostartDirectory()
{
    const QString configHome = qEnvironmentVariable("XDG_CONFIG_HOME");
    return (QDir::isAbsolutePath(configHome) ? configHome : QDir::homePath() + QStringLiteral("/.config"))
        + QStringLiteral("/autostart");
}

QString QVLoginItem::entryContents() const
{
    const QString comment = QCoreApplication::translate("QVLoginItem", "Drive the mouse pointer from the keyboard");
    QStringList arguments { m_binaryPath };
    if (!m_settingsPath.isEmpty())
        arguments << settingsOption << m_settingsPath;
    const QStringList lines {
        QStringLiteral("[Desktop Entry]"),
        QStringLiteral("Type=Application"),
        QStringLiteral("Name=Corvane"),
        QStringLiteral("Comment=") + QVDesktopEntry::escapeValue(comment),
        QStringLiteral("Exec=") + QVDesktopEntry::execLineText(arguments),
        QStringLiteral("Icon=corvane"),
        QStringLiteral("Terminal=false"),
        QStringLiteral("NoDisplay=false"),
        QStringLiteral("X-GNOME-Autostart-enabled=true"),
        // Started a little late and after the panel, so that the tray is there to take the icon.
        QStringLiteral("X-GNOME-Autostart-Delay=3"),
        QStringLiteral("X-MATE-Autostart-Delay=3"),
        QStringLiteral("X-KDE-autostart-after=panel"),
        QStringLiteral("X-LXQt-Need-Tray=true"),
    };
    return lines.join(u'\n') + u'\n';
}

QVLoginItem::Match QVLoginItem::match(const QVDesktopEntry &entry) const
{
    const QStringList arguments = entry.execArguments();
    if (arguments.isEmpty())
        return Match::Other;
    const QString program = programPath(arguments.first());
    if (program == m_binaryPath)
        return settingsArgument(arguments) == m_settingsPath ? Match::Ours : Match::Other;
    const QString name = QFileInfo(program.isEmpty() ? arguments.first() : program).fileName();
    return name.compare(programName, Qt::CaseInsensitive) == 0 ? Match::SameName : Match::Other;
}

QStringList QVLoginItem::entryFiles() const
{
    const QDir directory(m_directory);
    QStringList paths;
    const QStringList names
        = directory.entryList({ QStringLiteral("*.desktop") }, QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    for (const QString &name : names)
        paths.append(directory.filePath(name));
    return paths;
}

bool QVLoginItem::isLoginItem() const
{
    for (const QString &path : entryFiles()) {
        QVDesktopEntry entry;
        if (entry.load(path) && match(entry) == Match::Ours && !isDisabled(entry))
            return true;
    }
    return false;
}

bool QVLoginItem::setLoginItem(bool enable)
{
    bool done = false;
    for (const QString &path : entryFiles()) {
        QVDesktopEntry entry;
        if (!entry.load(path))
            continue;
        switch (match(entry)) {
        case Match::Ours:
            if (!enable)
                done = QFile::remove(path) || done;
            else if (!isDisabled(entry) || writeEntry(path))
                done = true;
            break;
        case Match::SameName:
            // Left behind by another copy of corvane: purged whatever is asked.
            QFile::remove(path);
            break;
        case Match::Other: break;
        }
    }
    if (enable && !done && QDir().mkpath(m_directory))
        done = writeEntry(freeFileName());
    return done;
}

QString QVLoginItem::freeFileName() const
{
    const QDir directory(m_directory);
    QString path = directory.filePath(programName + QStringLiteral(".desktop"));
    // A dangling link counts as taken: writing through it would land somewhere else.
    for (int number = 2; QFileInfo::exists(path) || QFileInfo(path).isSymLink(); ++number)
        path = directory.filePath(QStringLiteral("%1-%2.desktop").arg(programName).arg(number));
    return path;
}

bool QVLoginItem::writeEntry(const QString &path) const
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(entryContents().toUtf8());
    return file.commit();
}
