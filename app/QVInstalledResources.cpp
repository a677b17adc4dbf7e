#include "QVInstalledResources.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QTranslator>

namespace
{

const QString helpPageName = QStringLiteral("overview.html");

// The folder names a UI language may have under help/, most specific first: "de_AT", "de".
// English is the page at the top of help/ and ends the search.
QStringList helpFolderNames(const QString &uiLanguage, bool *isEnglish)
{
    QString name = uiLanguage;
    name.replace(u'-', u'_');
    const QString language = name.section(u'_', 0, 0);
    *isEnglish = language == QLatin1String("en");
    return name == language ? QStringList { name } : QStringList { name, language };
}

QString existingFile(const QString &path)
{
    return QFileInfo(path).isFile() ? QDir::cleanPath(path) : QString();
}

bool installTranslator(
    QCoreApplication &application, const QLocale &locale, const QString &name, const QString &directory)
{
    if (directory.isEmpty())
        return false;
    auto *translator = new QTranslator(&application);
    if (!translator->load(locale, name, QStringLiteral("_"), directory)) {
        delete translator;
        return false;
    }
    return QCoreApplication::installTranslator(translator);
}

} // namespace

QStringList QVInstalledResources::dataDirectories()
{
    QStringList directories;
    if (QCoreApplication::instance())
        directories.append(
            QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../share/corvane")));
#ifdef CORVANE_BUILD_DATA_DIR
    directories.append(QStringLiteral(CORVANE_BUILD_DATA_DIR));
#endif
    return directories;
}

QString QVInstalledResources::helpPagePath()
{
    return helpPagePath(dataDirectories(), QLocale());
}

QString QVInstalledResources::helpPagePath(const QStringList &dataDirectories, const QLocale &locale)
{
    for (const QString &directory : dataDirectories) {
        const QString help = directory + QStringLiteral("/help/");
        const QString english = existingFile(help + helpPageName);
        if (english.isEmpty())
            continue;
        for (const QString &uiLanguage : locale.uiLanguages()) {
            bool isEnglish = false;
            for (const QString &folder : helpFolderNames(uiLanguage, &isEnglish)) {
                if (isEnglish)
                    return english;
                const QString translated = existingFile(help + folder + u'/' + helpPageName);
                if (!translated.isEmpty())
                    return translated;
            }
        }
        return english;
    }
    return QString();
}

QString QVInstalledResources::translationsDirectory()
{
    return translationsDirectory(dataDirectories());
}

QString QVInstalledResources::translationsDirectory(const QStringList &dataDirectories)
{
    for (const QString &directory : dataDirectories) {
        const QString translations = directory + QStringLiteral("/translations");
        if (QFileInfo(translations).isDir())
            return QDir::cleanPath(translations);
    }
    return QString();
}

void QVInstalledResources::installTranslators(QCoreApplication &application, const QLocale &locale)
{
    installTranslator(application, locale, QStringLiteral("corvane"), translationsDirectory());
    // Qt's own texts: the buttons of message boxes, the context menus of text fields.
    installTranslator(
        application, locale, QStringLiteral("qtbase"), QLibraryInfo::path(QLibraryInfo::TranslationsPath));
}
