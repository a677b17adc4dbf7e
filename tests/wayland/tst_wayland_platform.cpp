#include "QVTestSway.h"
#include "QVTestWaylandProbe.h"

#include <QTest>

class tst_wayland_platform final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rig()
    {
        QString error;
        auto sway = QVTestSway::start(true, &error);
        QVERIFY2(sway, qPrintable(error));
        QVERIFY2(sway->command(
                     QStringLiteral("output X11-1 resolution 2560x1440 position 1920 0 scale 2 transform 90"), &error),
            qPrintable(error));
        QVTestWaylandProbe probe(sway->clientEnvironment());
        QVERIFY(probe.waitFor(QStringLiteral("configured X11-1 .*")).hasMatch());
        QVERIFY(probe.send(QStringLiteral("press 29")));
        QVERIFY(sway->removeX11Output(&error));
        QVERIFY(probe.waitFor(QStringLiteral("removed X11-1")).hasMatch());
    }
};

QTEST_GUILESS_MAIN(tst_wayland_platform)
#include "tst_wayland_platform.moc"
