#include "QVDoctor.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

// corvane --doctor: the installed desktop entry that KWin reads, and what the
// report asks the user to fix.
class TestDoctor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void desktopEntry_data()
    {
        QTest::addColumn<QString>("contents"); // %1: this binary's path; empty: no entry
        QTest::addColumn<bool>("fine");
        QTest::addColumn<QString>("problem");
        QTest::newRow("none installed") << QString() << false << QStringLiteral("no desktop entry");
        QTest::newRow("installed, this binary")
            << QStringLiteral("Exec=%1\nX-KDE-Wayland-Interfaces=org_kde_kwin_fake_input\n") << true << QString();
        QTest::newRow("among other interfaces, with arguments") << QStringLiteral(
            "Exec=\"%1\" --settings %f\nX-KDE-Wayland-Interfaces=org_kde_plasma_window_management,"
            "org_kde_kwin_fake_input\n") << true << QString();
        QTest::newRow("no request for fake input")
            << QStringLiteral("Exec=%1\n") << false << QStringLiteral("does not ask for fake input");
        QTest::newRow("a relative Exec") << QStringLiteral(
            "Exec=corvane\nX-KDE-Wayland-Interfaces=org_kde_kwin_fake_input\n")
                                         << false << QStringLiteral("names corvane, not this binary");
        QTest::newRow("another binary") << QStringLiteral(
            "Exec=/usr/bin/corvane\nX-KDE-Wayland-Interfaces=org_kde_kwin_fake_input\n")
                                        << false << QStringLiteral("start that one");
    }

    void desktopEntry()
    {
        QFETCH(QString, contents);
        QFETCH(bool, fine);
        QFETCH(QString, problem);
        QTemporaryDir home;
        QTemporaryDir system;
        const QString binary = home.filePath(QStringLiteral("bin/corvane"));
        QVERIFY(QDir().mkpath(home.filePath(QStringLiteral("bin"))));
        QFile(binary).open(QIODevice::WriteOnly);
        // Reached through a link, as an installed binary often is: KWin compares the real file.
        const QString link = home.filePath(QStringLiteral("corvane-link"));
        QVERIFY(QFile::link(binary, link));
        if (!contents.isEmpty()) {
            QVERIFY(QDir().mkpath(system.filePath(QStringLiteral("applications"))));
            QFile entry(system.filePath(QStringLiteral("applications/org.corvane.Corvane.desktop")));
            QVERIFY(entry.open(QIODevice::WriteOnly));
            entry.write(
                QStringLiteral("[Desktop Entry]\nType=Application\nName=Corvane\n%1").arg(contents.arg(link)).toUtf8());
        }
        // The user's folder has none: the system's entry counts.
        const QVDesktopEntryCheck check = QVDesktopEntryCheck::find({ home.path(), system.path() }, binary);
        QCOMPARE(check.problem().isEmpty(), fine);
        QVERIFY2(check.problem().contains(problem), qPrintable(check.problem()));
    }

    void reportAsksForWhatIsMissing()
    {
        QVDoctor::Findings findings;
        findings.session = { QString(), QStringLiteral("wayland-0"), QStringLiteral("wayland") };
        findings.desktop = QStringLiteral("KDE");
        findings.choice = { QVPlatformChoice::Kind::Wayland, {} };
        QVWaylandDesktopFacts facts;
        facts.desktops = { QStringLiteral("KDE") };
        facts.globals = { "zwlr_layer_shell_v1" };
        facts.portalVersions = { { QStringLiteral("GlobalShortcuts"), 1 }, { QStringLiteral("RemoteDesktop"), 1 } };
        findings.wayland = facts;
        const QString report = QVDoctor::report(findings);
        // KWin hides fake input from a binary no installed entry names: the report says how to get it.
        QVERIFY2(report.contains(QLatin1String("fake input: no desktop entry")), qPrintable(report));
        QVERIFY2(report.contains(QLatin1String("GlobalShortcuts 1, RemoteDesktop 1")), qPrintable(report));
        QVERIFY(!report.contains(QLatin1String("Nothing is missing")));

        findings.choice = { QVPlatformChoice::Kind::X11, {} };
        findings.wayland.reset();
        QVERIFY(QVDoctor::report(findings).contains(QLatin1String("Nothing is missing")));
    }
};

QTEST_GUILESS_MAIN(TestDoctor)
#include "tst_doctor.moc"
