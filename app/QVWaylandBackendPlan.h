#pragma once

#include <QByteArray>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVersionNumber>

// What a Wayland desktop offers Corvane, as far as a program can learn it.
struct QVWaylandDesktopFacts final {
    QStringList desktops; // $XDG_CURRENT_DESKTOP, split at ':' ("KDE", "GNOME", "Hyprland", "sway")
    QVersionNumber desktopVersion; // Plasma's or GNOME's, null where unknown
    QSet<QByteArray> globals; // the interfaces the compositor offers this program
    QMap<QString, uint> portalVersions; // "GlobalShortcuts", "RemoteDesktop": the interface's version

    static QStringList desktopsFromEnvironment(const QString &currentDesktop);
};

// Which mechanism serves each of Corvane's needs on a Wayland desktop, and why:
// the same choice drives the back end and what --doctor reports.
struct QVWaylandBackendPlan final {
    enum class HotKeys { Portal, CompositorBinding };
    enum class Pointer { VirtualPointer, FakeInput, RemoteDesktop, None };
    enum class Overlay { LayerShell, Window };

    HotKeys hotKeys = HotKeys::CompositorBinding;
    QString hotKeysReason;
    Pointer pointer = Pointer::None;
    QString pointerReason;
    Overlay overlay = Overlay::Window;
    QString overlayReason;

    static QVWaylandBackendPlan forDesktop(const QVWaylandDesktopFacts &facts);
    // Whether the desktop is one whose shortcut portal fires: only then is the portal worth asking.
    static bool desktopFiresPortalShortcuts(const QVWaylandDesktopFacts &facts);

private:
    void chooseHotKeys(const QVWaylandDesktopFacts &facts);
    void choosePointer(const QVWaylandDesktopFacts &facts);
    void chooseOverlay(const QVWaylandDesktopFacts &facts);
};
