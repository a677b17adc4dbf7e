#include "QVCommandLine.h"

#include "QVPlatformChoice.h"

QVCommandLine QVCommandLine::parse(const QStringList &arguments)
{
    QVCommandLine line;
    for (qsizetype index = 1; index < arguments.size(); ++index) {
        const QString &argument = arguments[index];
        if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
            line.showHelp = true;
        } else if (argument == QLatin1String("--version") || argument == QLatin1String("-v")) {
            line.showVersion = true;
        } else if (argument == QLatin1String("--doctor")) {
            line.showDoctor = true;
        } else if (argument == QLatin1String("--settings")) {
            if (++index >= arguments.size()) {
                line.error = QStringLiteral("--settings needs a file");
                return line;
            }
            line.settingsPath = arguments[index];
        } else if (argument.startsWith(QLatin1String("--settings="))) {
            line.settingsPath = argument.mid(int(qstrlen("--settings=")));
        } else if (argument == QLatin1String("--platform")) {
            if (++index >= arguments.size() || arguments[index].isEmpty()
                || !QVPlatformChoice::isKnownName(arguments[index])) {
                line.error = QStringLiteral("--platform needs x11 or wayland");
                return line;
            }
            line.platform = arguments[index];
        } else if (argument == QLatin1String("--perform") || argument == QLatin1String("--perform-release")) {
            if (++index >= arguments.size() || arguments[index].isEmpty()) {
                line.error = QStringLiteral("%1 needs the identifier or title of a control").arg(argument);
                return line;
            }
            line.performName = arguments[index];
            line.performRelease = argument == QLatin1String("--perform-release");
        } else {
            line.error = QStringLiteral("unknown argument \"%1\"").arg(argument);
            return line;
        }
    }
    return line;
}

QString QVCommandLine::helpText()
{
    return QStringLiteral("Usage: corvane [--settings FILE] [--perform CONTROL | --perform-release CONTROL]\n"
                          "Drive the mouse pointer from the keyboard with system-wide hot keys.\n"
                          "\n"
                          "  --settings FILE            read and save settings in FILE\n"
                          "                             (default: $CORVANE_SETTINGS, else\n"
                          "                             $XDG_CONFIG_HOME/corvane/settings.json)\n"
                          "  --perform CONTROL          have the running Corvane perform a control, named\n"
                          "                             by its identifier or title, as its hot key would;\n"
                          "                             a Move repeats until --perform-release\n"
                          "  --perform-release CONTROL  end the repetition, as the hot key's release would\n"
                          "  --platform x11|wayland     drive this window system, not the session's own\n"
                          "  --doctor                   show what this session offers Corvane and how to\n"
                          "                             fix what is missing\n"
                          "  --help                     show this text\n"
                          "  --version                  show the version\n"
                          "\n"
                          "Corvane drives the session's window system: X11 ($DISPLAY), or Wayland\n"
                          "($WAYLAND_DISPLAY) on compositors built on wlroots, where the compositor's\n"
                          "key bindings run corvane --perform.\n");
}
