#pragma once

#include <QString>

// Restarting Corvane: a small helper process waits until this one has ended and
// then starts the same binary with the same arguments and environment.
class QVSelfRestart final
{
public:
    // Starts corvane-restart from beside the running binary, detached; false with a
    // reason when it cannot be started.
    static bool launchRestartHelper(QString *error);
};
