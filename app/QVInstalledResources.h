#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>

class QCoreApplication;

// Where the files installed beside the program are found at run time: the help pages and the
// compiled translations. An installed Corvane finds them under <prefix>/share/corvane, relative
// to its binary; a Corvane run from the build tree finds the copies the build puts there.
class QVInstalledResources final
{
public:
    // The help page to open: in the UI language where the page exists, else English. Empty
    // when no help is installed.
    static QString helpPagePath();
    // The folder that holds corvane_<language>.qm; empty when there is none.
    static QString translationsDirectory();
    // Installs Corvane's translation and Qt's own (qtbase) for the locale, where they exist.
    // The translators belong to the application and live as long as it does.
    static void installTranslators(QCoreApplication &application, const QLocale &locale = QLocale());

    // The places searched, in order: beside the binary, then the build tree.
    static QStringList dataDirectories();
    // The same lookups over given places, for a given locale.
    static QString helpPagePath(const QStringList &dataDirectories, const QLocale &locale);
    static QString translationsDirectory(const QStringList &dataDirectories);
};
