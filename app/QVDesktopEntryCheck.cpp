#include "QVDesktopEntryCheck.h"

#include "QVDesktopEntry.h"

#include <QDir>
#include <QFileInfo>

namespace
{

const QString entryName = QStringLiteral("applications/org.corvane.Corvane.desktop");
const QString fakeInput = QStringLiteral("org_kde_kwin_fake_input");

QString canonical(const QString &path)
{
    const QString resolved = QFileInfo(path).canonicalFilePath();
    return resolved.isEmpty() ? path : resolved;
}

} // namespace

QStringList QVDesktopEntryCheck::sessionDataFolders()
{
    QString home = qEnvironmentVariable("XDG_DATA_HOME");
    if (home.isEmpty())
        home = QDir::homePath() + QStringLiteral("/.local/share");
    QString dirs = qEnvironmentVariable("XDG_DATA_DIRS");
    if (dirs.isEmpty())
        dirs = QStringLiteral("/usr/local/share:/usr/share");
    return QStringList { home } + dirs.split(u':', Qt::SkipEmptyParts);
}

QVDesktopEntryCheck QVDesktopEntryCheck::find(const QStringList &dataFolders, const QString &binary)
{
    QVDesktopEntryCheck check;
    for (const QString &folder : dataFolders) {
        const QString path = QDir(folder).filePath(entryName);
        QVDesktopEntry entry;
        if (!QFileInfo::exists(path) || !entry.load(path))
            continue;
        check.entryPath = path;
        check.program = entry.execArguments().value(0);
        check.asksForFakeInput = entry.stringValue(QStringLiteral("X-KDE-Wayland-Interfaces"))
                                     .split(u',', Qt::SkipEmptyParts)
                                     .contains(fakeInput);
        // KWin compares the running executable with the entry's absolute path.
        check.namesThisBinary = QDir::isAbsolutePath(check.program) && canonical(check.program) == canonical(binary);
        break;
    }
    return check;
}

QString QVDesktopEntryCheck::problem() const
{
    if (entryPath.isEmpty())
        return QStringLiteral("no desktop entry org.corvane.Corvane.desktop is installed: install Corvane "
                              "(cmake --install build) so that KWin grants it fake input");
    if (!asksForFakeInput)
        return QStringLiteral("%1 does not ask for fake input (X-KDE-Wayland-Interfaces=%2): install this "
                              "Corvane's own entry")
            .arg(entryPath, fakeInput);
    if (!namesThisBinary)
        return QStringLiteral("%1 names %2, not this binary: KWin grants fake input only to the installed "
                              "corvane, so start that one")
            .arg(entryPath, program.isEmpty() ? QStringLiteral("no program") : program);
    return {};
}
