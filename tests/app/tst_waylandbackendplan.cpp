#include "QVWaylandBackendPlan.h"

#include <QTest>

using Plan = QVWaylandBackendPlan;
Q_DECLARE_METATYPE(QVWaylandDesktopFacts)
Q_DECLARE_METATYPE(Plan::HotKeys)
Q_DECLARE_METATYPE(Plan::Pointer)
Q_DECLARE_METATYPE(Plan::Overlay)

namespace
{

QVWaylandDesktopFacts facts(const QString &desktop, const QString &version, const QList<QByteArray> &globals,
    const QMap<QString, uint> &portals)
{
    QVWaylandDesktopFacts facts;
    facts.desktops = QVWaylandDesktopFacts::desktopsFromEnvironment(desktop);
    facts.desktopVersion = QVersionNumber::fromString(version);
    facts.globals = QSet<QByteArray>(globals.cbegin(), globals.cend());
    facts.portalVersions = portals;
    return facts;
}

} // namespace

// What serves hot keys, pointer and overlay on each desktop, as the desktops of
// 2026 really behave.
class TestWaylandBackendPlan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void forDesktop_data()
    {
        QTest::addColumn<QVWaylandDesktopFacts>("facts");
        QTest::addColumn<Plan::HotKeys>("hotKeys");
        QTest::addColumn<Plan::Pointer>("pointer");
        QTest::addColumn<Plan::Overlay>("overlay");
        using H = Plan::HotKeys;
        using P = Plan::Pointer;
        using O = Plan::Overlay;
        const QByteArray virtualPointer = "zwlr_virtual_pointer_manager_v1";
        const QByteArray layerShell = "zwlr_layer_shell_v1";
        const QByteArray fakeInput = "org_kde_kwin_fake_input";
        const QMap<QString, uint> both { { QStringLiteral("GlobalShortcuts"), 1 },
            { QStringLiteral("RemoteDesktop"), 1 } };
        const QMap<QString, uint> remoteOnly { { QStringLiteral("RemoteDesktop"), 1 } };

        QTest::newRow("sway") << facts(QStringLiteral("sway"), {}, { virtualPointer, layerShell }, {})
                              << H::CompositorBinding << P::VirtualPointer << O::LayerShell;
        // A portal that some back end serves proves nothing on a compositor that binds keys itself.
        QTest::newRow("sway with a stray shortcut portal")
            << facts(QStringLiteral("sway"), {}, { virtualPointer, layerShell }, both) << H::CompositorBinding
            << P::VirtualPointer << O::LayerShell;
        QTest::newRow("Hyprland") << facts(QStringLiteral("Hyprland"), {}, { virtualPointer, layerShell }, both)
                                  << H::Portal << P::VirtualPointer << O::LayerShell;
        QTest::newRow("Plasma 5.27, installed")
            << facts(QStringLiteral("KDE"), QStringLiteral("5.27.5"), { fakeInput, layerShell }, both) << H::Portal
            << P::FakeInput << O::LayerShell;
        QTest::newRow("Plasma, binary not the installed one")
            << facts(QStringLiteral("KDE"), QStringLiteral("6.2"), { layerShell }, both) << H::Portal
            << P::RemoteDesktop << O::LayerShell;
        QTest::newRow("GNOME 43") << facts(QStringLiteral("ubuntu:GNOME"), QStringLiteral("43.9"), {}, remoteOnly)
                                  << H::CompositorBinding << P::RemoteDesktop << O::Window;
        // Portal 1.16 serves GlobalShortcuts from KDE's back end when it is installed: it never fires.
        QTest::newRow("GNOME 43 with KDE's back end installed")
            << facts(QStringLiteral("GNOME"), QStringLiteral("43.9"), {}, both) << H::CompositorBinding
            << P::RemoteDesktop << O::Window;
        QTest::newRow("GNOME of unknown version")
            << facts(QStringLiteral("GNOME"), {}, {}, both) << H::CompositorBinding << P::RemoteDesktop << O::Window;
        QTest::newRow("GNOME 48") << facts(QStringLiteral("GNOME"), QStringLiteral("48.1"), {}, both) << H::Portal
                                  << P::RemoteDesktop << O::Window;
        QTest::newRow("nothing offered") << facts(QString(), {}, {}, {}) << H::CompositorBinding << P::None
                                         << O::Window;
    }

    void forDesktop()
    {
        QFETCH(QVWaylandDesktopFacts, facts);
        QFETCH(Plan::HotKeys, hotKeys);
        QFETCH(Plan::Pointer, pointer);
        QFETCH(Plan::Overlay, overlay);
        const Plan plan = Plan::forDesktop(facts);
        QCOMPARE(plan.hotKeys, hotKeys);
        QCOMPARE(plan.pointer, pointer);
        QCOMPARE(plan.overlay, overlay);
        // Every choice says why, and a fallback for keys says what the user does instead.
        QVERIFY(!plan.hotKeysReason.isEmpty() && !plan.pointerReason.isEmpty() && !plan.overlayReason.isEmpty());
        if (hotKeys == Plan::HotKeys::CompositorBinding)
            QVERIFY2(plan.hotKeysReason.contains(QLatin1String("corvane --perform")), qPrintable(plan.hotKeysReason));
    }
};

QTEST_GUILESS_MAIN(TestWaylandBackendPlan)
#include "tst_waylandbackendplan.moc"
