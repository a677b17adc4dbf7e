#pragma once

#include "QVDesktopEntryCheck.h"
#include "QVPlatformChoice.h"
#include "QVWaylandBackendPlan.h"

#include <QString>

#include <optional>

// corvane --doctor: what the running session offers Corvane, what Corvane uses
// for hot keys, pointer and overlay, and one line on how to fix each thing missing.
class QVDoctor final
{
public:
    struct Findings {
        QVPlatformChoice::Session session;
        QString desktop; // $XDG_CURRENT_DESKTOP
        QVPlatformChoice choice;
        std::optional<QVWaylandDesktopFacts> wayland; // learnt where the session is Wayland
        QString compositorError;
        QVDesktopEntryCheck entry;
    };

    static Findings examine(const QString &requestedPlatform);
    static QString report(const Findings &findings);

private:
    static void reportWayland(const Findings &findings, QStringList *lines, QStringList *fixes);
    // Whether this Corvane drives the Wayland desktop itself, or else how it goes on.
    static QString waylandVerdict(const Findings &findings, const QVWaylandBackendPlan &plan, QStringList *fixes);
};
