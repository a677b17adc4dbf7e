#include "QVPlatformChoice.h"

#include <QTest>

Q_DECLARE_METATYPE(QVPlatformChoice::Kind)

// Which back end a session gets, and what --platform overrides.
class TestPlatformChoice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void choose_data()
    {
        using Kind = QVPlatformChoice::Kind;
        QTest::addColumn<QString>("requested");
        QTest::addColumn<QString>("display");
        QTest::addColumn<QString>("waylandDisplay");
        QTest::addColumn<QString>("sessionType");
        QTest::addColumn<Kind>("kind");
        const QString x = QStringLiteral(":0"), w = QStringLiteral("wayland-1");
        QTest::newRow("X11 session") << QString() << x << QString() << QStringLiteral("x11") << Kind::X11;
        QTest::newRow("Wayland with XWayland: Wayland")
            << QString() << x << w << QStringLiteral("wayland") << Kind::Wayland;
        QTest::newRow("Wayland socket without a session type")
            << QString() << QString() << w << QString() << Kind::Wayland;
        QTest::newRow("asked for X11 in Wayland")
            << QStringLiteral("x11") << x << w << QStringLiteral("wayland") << Kind::X11;
        QTest::newRow("asked for X11 without one")
            << QStringLiteral("x11") << QString() << w << QString() << Kind::None;
        QTest::newRow("asked for Wayland without one")
            << QStringLiteral("wayland") << x << QString() << QString() << Kind::None;
        QTest::newRow("Wayland type, only X11 named")
            << QString() << x << QString() << QStringLiteral("wayland") << Kind::X11;
        QTest::newRow("nothing at all") << QString() << QString() << QString() << QString() << Kind::None;
    }

    void choose()
    {
        QFETCH(QString, requested);
        QFETCH(QString, display);
        QFETCH(QString, waylandDisplay);
        QFETCH(QString, sessionType);
        QFETCH(QVPlatformChoice::Kind, kind);
        const QVPlatformChoice choice = QVPlatformChoice::choose(requested, { display, waylandDisplay, sessionType });
        QCOMPARE(choice.kind, kind);
        // Every refusal says why.
        if (kind == QVPlatformChoice::Kind::None)
            QVERIFY(!choice.reason.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestPlatformChoice)
#include "tst_platformchoice.moc"
