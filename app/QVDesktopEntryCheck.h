#pragma once

#include <QString>
#include <QStringList>

// Whether Corvane's installed desktop entry lets KWin grant this binary its fake
// input: KWin hands the protocol only to the program the entry names by absolute
// path, and only when the entry asks for it.
struct QVDesktopEntryCheck final {
    QString entryPath; // empty: no entry installed
    QString program; // what its Exec runs
    bool asksForFakeInput = false;
    bool namesThisBinary = false;

    // Looks for the entry in these data folders, first found wins, as launchers do.
    static QVDesktopEntryCheck find(const QStringList &dataFolders, const QString &binary);
    // The data folders of this session: $XDG_DATA_HOME, then $XDG_DATA_DIRS.
    static QStringList sessionDataFolders();
    // Empty when KWin may grant fake input to this binary; else what is wrong and how to fix it.
    QString problem() const;
};
