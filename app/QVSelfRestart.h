#pragma once

#include <QString>
#include <QStringList>

// Restarting Corvane: a small helper process waits until this one has ended and
// then starts the same binary with the same arguments and environment.
class QVSelfRestart final
{
public:
    // Starts the helper detached; false with a reason when it cannot be started.
    static bool launchRestartHelper(QString *error);

    // corvane-restart beside the running binary, unless overridden (below, or by
    // the environment variable CORVANE_RESTART_HELPER).
    static QString helperPath();
    // Empty restores the default; tests point it at a missing file to reach the fallback.
    static void setHelperPath(const QString &path);
    // BINARY PID ARGUMENT...: this process's binary, its id and its own arguments.
    static QStringList helperArguments();
};
