#include "QVInstalledResources.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLibraryInfo>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>

namespace
{

// Writes the files named relative to root; each holds its own name.
void makeFiles(const QString &root, const QStringList &files)
{
    for (const QString &file : files) {
        const QString path = root + u'/' + file;
        QDir().mkpath(QFileInfo(path).path());
        QFile out(path);
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(file.toUtf8());
    }
}

void removeTranslators()
{
    for (QTranslator *translator : QCoreApplication::instance()->findChildren<QTranslator *>()) {
        QCoreApplication::removeTranslator(translator);
        delete translator;
    }
}

} // namespace

class tst_InstalledResources final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { removeTranslators(); }

    void helpPage_data()
    {
        QTest::addColumn<QStringList>("installed");
        QTest::addColumn<QStringList>("buildTree");
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("expected"); // "installed/..." or "build/...", empty: none

        const QStringList both { QStringLiteral("help/overview.html"), QStringLiteral("help/de/overview.html") };
        const QStringList english { QStringLiteral("help/overview.html") };
        QTest::newRow("German UI, German page")
            << both << QStringList() << QStringLiteral("de_DE") << QStringLiteral("installed/help/de/overview.html");
        QTest::newRow("Austrian German finds de")
            << both << QStringList() << QStringLiteral("de_AT") << QStringLiteral("installed/help/de/overview.html");
        QTest::newRow("English UI") << both << QStringList() << QStringLiteral("en_GB")
                                    << QStringLiteral("installed/help/overview.html");
        QTest::newRow("no French page") << both << QStringList() << QStringLiteral("fr_FR")
                                        << QStringLiteral("installed/help/overview.html");
        QTest::newRow("no German page") << english << QStringList() << QStringLiteral("de_DE")
                                        << QStringLiteral("installed/help/overview.html");
        // A translated page without the English one is no installed help.
        QTest::newRow("only a stray German page") << QStringList { QStringLiteral("help/de/overview.html") }
                                                  << QStringList() << QStringLiteral("de_DE") << QStringLiteral("");
        QTest::newRow("nothing installed, build tree")
            << QStringList() << both << QStringLiteral("de_DE") << QStringLiteral("build/help/de/overview.html");
        // An installed Corvane never mixes in pages from the tree it was built in.
        QTest::newRow("installed wins") << english << both << QStringLiteral("de_DE")
                                        << QStringLiteral("installed/help/overview.html");
        QTest::newRow("no help anywhere")
            << QStringList() << QStringList() << QStringLiteral("de_DE") << QStringLiteral("");
    }

    void helpPage()
    {
        QFETCH(QStringList, installed);
        QFETCH(QStringList, buildTree);
        QFETCH(QString, locale);
        QFETCH(QString, expected);
        QTemporaryDir root;
        makeFiles(root.filePath(QStringLiteral("installed")), installed);
        makeFiles(root.filePath(QStringLiteral("build")), buildTree);
        const QStringList places { root.filePath(QStringLiteral("installed")), root.filePath(QStringLiteral("build")) };

        const QString page = QVInstalledResources::helpPagePath(places, QLocale(locale));
        QCOMPARE(page, expected.isEmpty() ? QString() : root.filePath(expected));
    }

    // The build compiles the German translation to where a Corvane from the build tree looks.
    void translatorsFollowTheLocale_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("click");
        QTest::newRow("German") << QStringLiteral("de_DE") << QStringLiteral("Klicken");
        QTest::newRow("Swiss German") << QStringLiteral("de_CH") << QStringLiteral("Klicken");
        QTest::newRow("English") << QStringLiteral("en_US") << QStringLiteral("Click");
        QTest::newRow("no translation") << QStringLiteral("ja_JP") << QStringLiteral("Click");
    }

    void translatorsFollowTheLocale()
    {
        QFETCH(QString, locale);
        QFETCH(QString, click);
        QVERIFY(QFileInfo::exists(QVInstalledResources::translationsDirectory() + QStringLiteral("/corvane_de.qm")));

        QVInstalledResources::installTranslators(*QCoreApplication::instance(), QLocale(locale));
        QCOMPARE(QCoreApplication::translate("QVCustomControlRepresentation", "Click"), click);
    }

    void qtOwnTextsAreTranslated()
    {
        const QString qtTranslations = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
        if (!QFileInfo::exists(qtTranslations + QStringLiteral("/qtbase_de.qm")))
            QSKIP("Qt's German translation is not installed (qt6-translations-l10n)");
        QVInstalledResources::installTranslators(*QCoreApplication::instance(), QLocale(QLocale::German));
        QCOMPARE(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("Abbrechen"));
    }
};

QTEST_GUILESS_MAIN(tst_InstalledResources)
#include "tst_installedresources.moc"
