#pragma once

#include <QString>
#include <QStringList>

// What the command line asks for; read before any display is opened.
struct QVCommandLine final {
    bool showHelp = false;
    bool showVersion = false;
    bool showDoctor = false; // what the session offers Corvane, and what is missing
    QString settingsPath; // empty: the default place
    // Asks the running Corvane to perform this control (by identifier or title) and ends.
    QString performName;
    bool performRelease = false; // the end of a held control's repetition instead
    QString platform; // "x11", "wayland", or empty for the session's own
    QString error; // set when the arguments make no sense

    static QVCommandLine parse(const QStringList &arguments);
    static QString helpText();
};
