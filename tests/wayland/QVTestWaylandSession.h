#pragma once

#include "QVTestSway.h"
#include "QVTestWaylandProbe.h"
#include "QVWaylandPlatform.h"

#include <QPoint>
#include <QStringList>

#include <memory>

// What a Wayland test works with: headless sway with its outputs set, the probe with
// a window on each, and the platform opened as Corvane opens it (from the
// environment). Kept for the next test row that asks for the same.
class QVTestWaylandSession final
{
public:
    // False with error set when something does not start.
    bool setUp(QVTestSway::Outputs outputs, const QStringList &commands, bool withProbe, QString *error);
    // The next setUp starts afresh (a row changed what it set up).
    void discard();
    // sway and all gone: a failed row leaves nothing behind.
    void reset();
    // sway gone under the platform's feet; the next setUp starts afresh.
    void stopSway();

    QVTestSway &sway() const { return *m_sway; }
    QVTestWaylandProbe &probe() const { return *m_probe; }
    QVWaylandPlatform &platform() const { return *m_platform; }

    // Puts the pointer on a pixel of an output through the platform, seen by the
    // probe: one pixel aside first, as a motion to where it is already is no change.
    bool park(const QVPoint &global, const QString &output, const QPoint &pixel);
    // What the probe prints when the pointer reaches a pixel of an output's window.
    static QString pointerAt(const QString &output, const QPoint &pixel);
    // The primary 1792x1080 at the origin and, to its right, 2560x1440 pixels at
    // scale 2 turned by 90 degrees: 720x1280 logical units, reaching 200 below the
    // primary. At 1792 of the layout's 2512 units, aiming at a pixel's edge lands a
    // rounding error short of it, on the primary.
    static QStringList scaledAndTurned();

private:
    std::unique_ptr<QVTestSway> m_sway;
    std::unique_ptr<QVTestWaylandProbe> m_probe;
    std::unique_ptr<QVWaylandPlatform> m_platform;
    QString m_key;
};
