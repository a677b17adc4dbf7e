#include "QVDoctor.h"

#include "QVDesktopInventory.h"

#include <QCoreApplication>
#include <QDBusConnection>

namespace
{

QString portalLine(const QMap<QString, uint> &versions)
{
    if (versions.isEmpty())
        return QStringLiteral("none answers (is xdg-desktop-portal installed and the session bus running?)");
    QStringList parts;
    for (auto it = versions.cbegin(); it != versions.cend(); ++it)
        parts.append(QStringLiteral("%1 %2").arg(it.key()).arg(it.value()));
    return parts.join(QStringLiteral(", "));
}

QString line(const QString &subject, const QString &text)
{
    return QStringLiteral("%1 %2").arg(subject + u':', -14).arg(text);
}

} // namespace

QVDoctor::Findings QVDoctor::examine(const QString &requestedPlatform)
{
    Findings findings;
    findings.session = QVPlatformChoice::currentSession();
    findings.desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
    findings.choice = QVPlatformChoice::choose(requestedPlatform, findings.session);
    if (findings.choice.kind == QVPlatformChoice::Kind::Wayland)
        findings.wayland = QVDesktopInventory::gather(QDBusConnection::sessionBus(), &findings.compositorError);
    findings.entry
        = QVDesktopEntryCheck::find(QVDesktopEntryCheck::sessionDataFolders(), QCoreApplication::applicationFilePath());
    return findings;
}

QString QVDoctor::report(const Findings &findings)
{
    const QVPlatformChoice::Session &session = findings.session;
    QStringList lines;
    QStringList fixes;
    lines << line(QStringLiteral("Session"),
        QStringLiteral("%1, WAYLAND_DISPLAY=%2, DISPLAY=%3, XDG_CURRENT_DESKTOP=%4")
            .arg(session.sessionType.isEmpty() ? QStringLiteral("type unknown") : session.sessionType,
                session.waylandDisplay.isEmpty() ? QStringLiteral("(unset)") : session.waylandDisplay,
                session.display.isEmpty() ? QStringLiteral("(unset)") : session.display,
                findings.desktop.isEmpty() ? QStringLiteral("(unset)") : findings.desktop));
    switch (findings.choice.kind) {
    case QVPlatformChoice::Kind::None:
        lines << line(QStringLiteral("Window system"), QStringLiteral("none: %1").arg(findings.choice.reason));
        fixes << QStringLiteral("start Corvane inside a graphical session (X11 or Wayland)");
        break;
    case QVPlatformChoice::Kind::X11:
        lines << line(QStringLiteral("Window system"), QStringLiteral("X11"));
        lines << line(QStringLiteral("Hot keys"), QStringLiteral("X11 key grabs"));
        lines << line(QStringLiteral("Pointer"), QStringLiteral("XTest"));
        lines << line(QStringLiteral("Overlay"), QStringLiteral("a window above every other"));
        break;
    case QVPlatformChoice::Kind::Wayland: reportWayland(findings, &lines, &fixes); break;
    }
    lines << QString();
    if (fixes.isEmpty()) {
        lines << QStringLiteral("Nothing is missing.");
    } else {
        lines << QStringLiteral("To fix:");
        for (const QString &fix : std::as_const(fixes))
            lines << QStringLiteral("  - ") + fix;
    }
    return lines.join(u'\n') + u'\n';
}

void QVDoctor::reportWayland(const Findings &findings, QStringList *lines, QStringList *fixes)
{
    const QVWaylandDesktopFacts &facts = *findings.wayland;
    const QVWaylandBackendPlan plan = QVWaylandBackendPlan::forDesktop(facts);
    *lines << line(QStringLiteral("Window system"), waylandVerdict(findings, plan, fixes));
    *lines << line(QStringLiteral("Hot keys"), plan.hotKeysReason);
    *lines << line(QStringLiteral("Pointer"), plan.pointerReason);
    *lines << line(QStringLiteral("Overlay"), plan.overlayReason);
    *lines << line(QStringLiteral("Portal"), portalLine(facts.portalVersions));
    if (plan.hotKeys == QVWaylandBackendPlan::HotKeys::CompositorBinding)
        *fixes << QStringLiteral("hot keys: the settings window shows each control's command to bind in the "
                                 "desktop's keyboard settings");
    if (plan.pointer == QVWaylandBackendPlan::Pointer::None)
        *fixes << QStringLiteral("pointer: %1").arg(plan.pointerReason);
    if (facts.desktops.contains(QLatin1String("KDE"), Qt::CaseInsensitive)) {
        const QString problem = findings.entry.problem();
        *lines << line(QStringLiteral("Desktop entry"), problem.isEmpty() ? findings.entry.entryPath : problem);
        if (!problem.isEmpty())
            *fixes << QStringLiteral("fake input: %1").arg(problem);
    }
}

QString QVDoctor::waylandVerdict(const Findings &findings, const QVWaylandBackendPlan &plan, QStringList *fixes)
{
    if (!findings.compositorError.isEmpty()) {
        *fixes << QStringLiteral("the compositor: %1").arg(findings.compositorError);
        return QStringLiteral("Wayland, unreachable: %1").arg(findings.compositorError);
    }
    if (plan.pointer == QVWaylandBackendPlan::Pointer::VirtualPointer
        || plan.pointer == QVWaylandBackendPlan::Pointer::FakeInput)
        return QStringLiteral("Wayland");
    // The remote desktop portal is not driven yet: XWayland serves where there is one.
    if (!findings.session.display.isEmpty())
        return QStringLiteral("X11 through XWayland (reaches X11 windows only): this Corvane drives Wayland "
                              "itself through a virtual pointer (wlroots) or KWin's fake input");
    *fixes << QStringLiteral("window system: this Corvane needs a virtual pointer (wlroots compositors), KWin's "
                             "fake input, or XWayland ($DISPLAY)");
    return QStringLiteral("none: no virtual pointer, no fake input and no XWayland");
}
