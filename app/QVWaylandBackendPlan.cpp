#include "QVWaylandBackendPlan.h"

namespace
{

const QString globalShortcuts = QStringLiteral("GlobalShortcuts");
const QString remoteDesktop = QStringLiteral("RemoteDesktop");

bool isDesktop(const QVWaylandDesktopFacts &facts, const char *name)
{
    return facts.desktops.contains(QLatin1String(name), Qt::CaseInsensitive);
}

// The desktops whose portal is known to fire its shortcuts, from which version on.
// Elsewhere the interface may be served by another desktop's back end that never
// fires (GNOME 43 with the KDE back end installed), so presence proves nothing.
QString shortcutPortalRefusal(const QVWaylandDesktopFacts &facts)
{
    if (isDesktop(facts, "KDE"))
        return facts.desktopVersion.isNull() || facts.desktopVersion >= QVersionNumber(5, 27)
            ? QString()
            : QStringLiteral("Plasma before 5.27 has no global shortcuts portal");
    if (isDesktop(facts, "GNOME"))
        return !facts.desktopVersion.isNull() && facts.desktopVersion >= QVersionNumber(48)
            ? QString()
            : QStringLiteral("GNOME fires portal shortcuts from version 48 on; an older one may show the "
                             "interface from another desktop's back end, which never fires");
    if (isDesktop(facts, "Hyprland"))
        return {};
    return QStringLiteral("this desktop's compositor binds keys itself");
}

} // namespace

QStringList QVWaylandDesktopFacts::desktopsFromEnvironment(const QString &currentDesktop)
{
    return currentDesktop.split(u':', Qt::SkipEmptyParts);
}

bool QVWaylandBackendPlan::desktopFiresPortalShortcuts(const QVWaylandDesktopFacts &facts)
{
    return shortcutPortalRefusal(facts).isEmpty();
}

QVWaylandBackendPlan QVWaylandBackendPlan::forDesktop(const QVWaylandDesktopFacts &facts)
{
    QVWaylandBackendPlan plan;
    plan.chooseHotKeys(facts);
    plan.choosePointer(facts);
    plan.chooseOverlay(facts);
    return plan;
}

void QVWaylandBackendPlan::chooseHotKeys(const QVWaylandDesktopFacts &facts)
{
    const QString refusal = shortcutPortalRefusal(facts);
    if (!facts.portalVersions.contains(globalShortcuts)) {
        hotKeys = HotKeys::CompositorBinding;
        hotKeysReason = QStringLiteral("the desktop offers no global shortcuts portal: bind each control's "
                                       "corvane --perform command in the desktop's keyboard settings");
    } else if (!refusal.isEmpty()) {
        hotKeys = HotKeys::CompositorBinding;
        hotKeysReason = QStringLiteral("%1: bind each control's corvane --perform command in the desktop's "
                                       "keyboard settings")
                            .arg(refusal);
    } else {
        hotKeys = HotKeys::Portal;
        hotKeysReason = QStringLiteral("global shortcuts portal, version %1: the desktop grants each key")
                            .arg(facts.portalVersions.value(globalShortcuts));
    }
}

void QVWaylandBackendPlan::choosePointer(const QVWaylandDesktopFacts &facts)
{
    if (facts.globals.contains("zwlr_virtual_pointer_manager_v1")) {
        pointer = Pointer::VirtualPointer;
        pointerReason = QStringLiteral("the compositor's virtual pointer (wlroots)");
    } else if (facts.globals.contains("org_kde_kwin_fake_input")) {
        pointer = Pointer::FakeInput;
        pointerReason = QStringLiteral("KWin's fake input, granted to Corvane's desktop entry");
    } else if (facts.portalVersions.contains(remoteDesktop)) {
        pointer = Pointer::RemoteDesktop;
        pointerReason = QStringLiteral("the remote desktop portal, which asks for consent and moves the pointer "
                                       "by relative steps from Corvane's estimate");
        if (isDesktop(facts, "KDE"))
            pointerReason += QStringLiteral(
                "; KWin would grant its fake input without asking to the installed corvane, whose desktop entry "
                "names it (install Corvane, or start the installed binary)");
    } else {
        pointer = Pointer::None;
        pointerReason = QStringLiteral("the desktop offers no way to move the pointer: neither a virtual pointer, "
                                       "nor KWin's fake input, nor the remote desktop portal");
    }
}

void QVWaylandBackendPlan::chooseOverlay(const QVWaylandDesktopFacts &facts)
{
    if (facts.globals.contains("zwlr_layer_shell_v1")) {
        overlay = Overlay::LayerShell;
        overlayReason = QStringLiteral("a layer-shell surface above every window");
    } else {
        overlay = Overlay::Window;
        overlayReason = QStringLiteral("a full-screen window: the compositor has no layer shell, so the overlay "
                                       "is raised by the normal focus rules and closes when it loses the keyboard");
    }
}
