#include "QVApplicationMode.h"
#include "QVFakeDelayedPerformer.h"
#include "QVLogCapture.h"
#include "QVUserDefaults.h"

#include <QTemporaryDir>
#include <QTest>

// The presentation modes: which changes restart Corvane, and what a restart
// leaves behind for the next process.
class tst_ApplicationMode final : public QObject
{
    Q_OBJECT

    struct Rig {
        QTemporaryDir directory;
        QVUserDefaults defaults { directory.filePath(QStringLiteral("settings.json")) };
        QVFakeDelayedPerformer terminationTimer;
        bool windowVisible = false;
        bool transformSucceeds = true;
        bool helperStarts = true;
        int transforms = 0, windowBroughtForward = 0, helperLaunches = 0, terminations = 0, beeps = 0;
        QVApplicationMode mode { defaults, terminationTimer,
            {
                .preferencesWindowVisible = [this] { return windowVisible; },
                .transformToForegroundApplication = [this] { return ++transforms, transformSucceeds; },
                .bringPreferencesWindowForward = [this] { ++windowBroughtForward; },
                .launchRestartHelper =
                    [this](QString *error) {
                        ++helperLaunches;
                        if (!helperStarts)
                            *error = QStringLiteral("no such file");
                        return helperStarts;
                    },
                .terminate = [this] { ++terminations; },
                .beep = [this] { ++beeps; },
            } };

        qint64 stored() const { return defaults.integerForKey(QVApplicationMode::settingsKey); }
        QString handedOverSection() const
        {
            return defaults.objectForKey(QVApplicationMode::preferencesSectionKey).toString();
        }
    };

private Q_SLOTS:
    void clampsStoredValues_data()
    {
        QTest::addColumn<QJsonValue>("stored");
        QTest::addColumn<qint64>("shown");
        QTest::addColumn<bool>("joinsTaskbar");
        QTest::newRow("absent") << QJsonValue() << qint64(0) << true;
        QTest::newRow("negative") << QJsonValue(-3) << qint64(0) << true;
        QTest::newRow("tray") << QJsonValue(1) << qint64(1) << false;
        QTest::newRow("too large") << QJsonValue(7) << qint64(2) << false;
        QTest::newRow("not a number") << QJsonValue(QStringLiteral("tray")) << qint64(0) << true;
    }
    void clampsStoredValues()
    {
        QFETCH(QJsonValue, stored);
        QFETCH(qint64, shown);
        QFETCH(bool, joinsTaskbar);
        Rig rig;
        rig.defaults.setObject(stored, QVApplicationMode::settingsKey);
        QCOMPARE(rig.mode.clampedStoredMode(), shown);
        rig.mode.updateApplicationMode();
        QCOMPARE(rig.mode.isDockless(), !joinsTaskbar);
        QCOMPARE(rig.transforms, joinsTaskbar ? 1 : 0);
        rig.mode.updateApplicationMode(); // in line already: nothing more happens
        QCOMPARE(rig.transforms, joinsTaskbar ? 1 : 0);
    }

    void leavingTheTaskbarRestartsAfterHalfASecond()
    {
        Rig rig;
        rig.mode.updateApplicationMode(); // launched in mode 0
        rig.windowVisible = true;
        QVERIFY(rig.mode.changeApplicationMode(QVApplicationMode::TrayIcon));
        QCOMPARE(rig.helperLaunches, 1);
        QVERIFY(rig.mode.isScheduledToQuit());
        QCOMPARE(rig.terminationTimer.requestedDelays, QList<double> { 0.5 });
        QCOMPARE(rig.handedOverSection(), QStringLiteral("General"));
        QCOMPARE(rig.stored(), qint64(1));
        QVERIFY(rig.terminationTimer.fire());
        QCOMPARE(rig.terminations, 1);
    }

    void changingBackWithinTheHalfSecondCancelsTheRestart()
    {
        Rig rig;
        rig.mode.updateApplicationMode();
        QVERIFY(rig.mode.changeApplicationMode(QVApplicationMode::Faceless));
        QVERIFY(rig.mode.changeApplicationMode(QVApplicationMode::TaskbarWindow));
        QVERIFY(!rig.mode.isScheduledToQuit());
        QVERIFY(!rig.terminationTimer.fire());
        QCOMPARE(rig.terminations, 0);
        QCOMPARE(rig.helperLaunches, 1); // launched already: it gives up on a process that stays
        QVERIFY(rig.handedOverSection().isEmpty()); // the window was not open
    }

    void betweenTrayAndBackgroundNothingRestarts()
    {
        Rig rig;
        rig.defaults.setObject(1, QVApplicationMode::settingsKey);
        rig.mode.updateApplicationMode();
        QVERIFY(rig.mode.changeApplicationMode(QVApplicationMode::Faceless));
        QVERIFY(rig.mode.changeApplicationMode(QVApplicationMode::TrayIcon));
        QVERIFY(!rig.mode.changeApplicationMode(QVApplicationMode::TrayIcon)); // unchanged
        QCOMPARE(rig.helperLaunches, 0);
        QVERIFY(rig.mode.isDockless());
    }

    void joiningTheTaskbarHappensAtOnce()
    {
        Rig rig;
        rig.defaults.setObject(2, QVApplicationMode::settingsKey);
        rig.mode.updateApplicationMode();
        rig.windowVisible = true;
        QVERIFY(rig.mode.changeApplicationMode(QVApplicationMode::TaskbarWindow));
        QVERIFY(!rig.mode.isDockless());
        QCOMPARE(rig.windowBroughtForward, 1);
        QCOMPARE(rig.helperLaunches, 0);
    }

    void aFailedTransformationFallsBackToTheTray()
    {
        Rig rig;
        rig.transformSucceeds = false;
        QVLogCapture log;
        rig.mode.updateApplicationMode();
        QCOMPARE(rig.stored(), qint64(1));
        QVERIFY(rig.mode.isDockless());
        QCOMPARE(rig.beeps, 1);
        QVERIFY(!log.lines(QStringLiteral("cannot transform process")).isEmpty());
    }

    void withoutTheHelperCorvaneKeepsRunning()
    {
        Rig rig;
        rig.mode.updateApplicationMode();
        rig.windowVisible = true;
        rig.helperStarts = false;
        QVLogCapture log;
        QVERIFY(rig.mode.changeApplicationMode(QVApplicationMode::TrayIcon));
        QVERIFY(!rig.mode.isScheduledToQuit());
        QVERIFY(!rig.terminationTimer.fire());
        QCOMPARE(rig.stored(), qint64(1)); // takes effect at the next start
        QVERIFY(rig.handedOverSection().isEmpty()); // nobody would take it
        QCOMPARE(rig.beeps, 1);
        QVERIFY(!log.lines(QStringLiteral("no such file")).isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_ApplicationMode)
#include "tst_applicationmode.moc"
