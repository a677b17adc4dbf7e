#pragma once

#include <QString>
#include <QStringList>

// What the command line asks for; read before any display is opened.
struct QVCommandLine final
{
    bool showHelp = false;
    bool showVersion = false;
    QString settingsPath; // empty: the default place
    QString error;        // set when the arguments make no sense

    static QVCommandLine parse(const QStringList &arguments);
    static QString helpText();
};
