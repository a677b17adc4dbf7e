#include "QVCommandLine.h"
#include "QVDBusService.h"
#include "QVEventDispatcher.h"
#include "QVEventParserApplication.h"
#include "QVHotKeyRecordingRoute.h"
#include "QVInstalledResources.h"
#include "QVLog.h"
#include "QVMainController.h"
#include "QVPlatformChoice.h"
#include "QVSingleInstance.h"
#include "QVTimerDelayedPerformer.h"
#include "QVUnixSignalWatcher.h"
#include "QVUserDefaults.h"
#include "QVX11Connection.h"
#include "QVX11Platform.h"

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>
#include <cstdlib>

namespace
{

QStringList argumentList(int argc, char **argv)
{
    QStringList arguments;
    for (int index = 0; index < argc; ++index)
        arguments.append(QString::fromLocal8Bit(argv[index]));
    return arguments;
}

void printLine(std::FILE *stream, const QString &text)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
}

void printUnreachable()
{
    printLine(stderr,
        QStringLiteral("corvane: cannot open X11 display \"%1\". Corvane needs a running X "
                       "server that this user may connect to.\n")
            .arg(QString::fromLocal8Bit(qgetenv("DISPLAY"))));
}

// Says plainly what is missing before Qt gives up on its own terms; false when Corvane cannot run.
bool chooseX11(const QString &requested)
{
    const QVPlatformChoice::Session session = QVPlatformChoice::currentSession();
    const QVPlatformChoice choice = QVPlatformChoice::choose(requested, session);
    switch (choice.kind) {
    case QVPlatformChoice::Kind::X11:
        if (!choice.reason.isEmpty())
            printLine(stderr, QStringLiteral("corvane: %1\n").arg(choice.reason));
        return true;
    case QVPlatformChoice::Kind::None:
        printLine(stderr, QStringLiteral("corvane: %1. Corvane needs an X11 session.\n").arg(choice.reason));
        return false;
    case QVPlatformChoice::Kind::Wayland: break;
    }
    // Until the Wayland back end is built in, XWayland is the way: it reaches only X11 windows.
    if (!requested.isEmpty() || session.display.isEmpty()) {
        printLine(stderr,
            session.display.isEmpty()
                ? QStringLiteral("corvane: this Wayland session offers no X11 display ($DISPLAY is not set), "
                                 "and this Corvane drives X11 only: log in to an X11 session, or run XWayland.\n")
                : QStringLiteral("corvane: this Corvane drives X11 only: start it without --platform wayland.\n"));
        return false;
    }
    printLine(stderr,
        QStringLiteral("corvane: Wayland session: driving X11 through XWayland, which reaches X11 windows only\n"));
    return true;
}

// The connection that proves the display reachable is kept and becomes Corvane's own: a
// probe closed before Qt connects can be a server's last client, and a server that resets
// as its last client leaves may then be mid-reset when Qt connects.
std::unique_ptr<QVX11Connection> openDisplay()
{
    const QByteArray display = qgetenv("DISPLAY");
    std::unique_ptr<QVX11Connection> connection = QVX11Connection::open(display, nullptr);
    if (!connection)
        printUnreachable();
    return connection;
}

// Qt ends a failed connection of its own with an abort; Corvane ends it with its message.
void exitOnQtFatal(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type != QtFatalMsg) {
        printLine(stderr, message + u'\n');
        return;
    }
    printLine(stderr,
        QStringLiteral("corvane: cannot use X11 display \"%1\": %2\n")
            .arg(QString::fromLocal8Bit(qgetenv("DISPLAY")), message.section(u'\n', 0, 0)));
    std::_Exit(1);
}

// --perform: no display, no window; the running Corvane does the work.
int askToPerform(const QString &settingsPath, const QVCommandLine &commandLine, int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QString error;
    QVSingleInstance running(settingsPath);
    if (!running.askToPerform(commandLine.performName, commandLine.performRelease, &error)) {
        printLine(stderr, QStringLiteral("corvane: %1\n").arg(error));
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const QVCommandLine commandLine = QVCommandLine::parse(argumentList(argc, argv));
    if (!commandLine.error.isEmpty()) {
        printLine(stderr, QStringLiteral("corvane: %1\n\n").arg(commandLine.error) + QVCommandLine::helpText());
        return 2;
    }
    if (commandLine.showHelp) {
        printLine(stdout, QVCommandLine::helpText());
        return 0;
    }
    if (commandLine.showVersion) {
        printLine(stdout, QStringLiteral("corvane %1\n").arg(QStringLiteral(CORVANE_VERSION)));
        return 0;
    }
    const QString settingsPath
        = commandLine.settingsPath.isEmpty() ? QVUserDefaults::defaultFilePath() : commandLine.settingsPath;
    if (!commandLine.performName.isEmpty())
        return askToPerform(settingsPath, commandLine, argc, argv);

    if (!chooseX11(commandLine.platform))
        return 1;
    std::unique_ptr<QVX11Connection> connection = openDisplay();
    if (!connection)
        return 1;
    qputenv("QT_QPA_PLATFORM", "xcb");

    const QtMessageHandler previousHandler = qInstallMessageHandler(exitOnQtFatal);
    QVEventParserApplication application(argc, argv);
    qInstallMessageHandler(previousHandler);
    QVEventParserApplication::setApplicationName(QStringLiteral("Corvane"));
    QVEventParserApplication::setApplicationVersion(QStringLiteral(CORVANE_VERSION));
    QVEventParserApplication::setQuitOnLastWindowClosed(false);
    QVInstalledResources::installTranslators(application);

    // Before any key is grabbed: a second Corvane on the same settings only asks the first to reopen.
    QString error;
    QVSingleInstance singleInstance(settingsPath);
    switch (singleInstance.claimOrAskToReopen(&error)) {
    case QVSingleInstance::Outcome::Claimed: break;
    case QVSingleInstance::Outcome::AskedToReopen: return 0;
    case QVSingleInstance::Outcome::Failed: printLine(stderr, QStringLiteral("corvane: %1\n").arg(error)); return 1;
    }

    std::unique_ptr<QVX11Platform> platform = QVX11Platform::open(std::move(connection), &error);
    if (!platform) {
        printLine(stderr, QStringLiteral("corvane: %1\n").arg(error));
        return 1;
    }

    QVUserDefaults defaults(settingsPath);
    QVUserDefaults::setStandardUserDefaults(&defaults);

    // Made before the controller's windows, whose hot key fields record through it, and gone after them.
    QVHotKeyRecordingRoute recordingRoute(*platform);
    QVHotKeyRecordingRoute::setShared(&recordingRoute);

    QVMainController controller(*platform, defaults);
    QObject::connect(&singleInstance, &QVSingleInstance::reopenRequested, &controller,
        &QVMainController::applicationShouldHandleReopen);

    QVTimerDelayedPerformer repetitionTimer;
    application.setEventDispatcher(std::make_unique<QVEventDispatcher>(
        [&controller](const QVEvent *event, bool isRepetition, bool *shouldRepeat) {
            return controller.performActionTriggeredByControl(nullptr, event, isRepetition, shouldRepeat);
        },
        [&controller](const QVEventRef &event) { controller.dispatchEventNormally(event); }, *platform,
        repetitionTimer));
    // While a field records a hot key, every key goes to it: no hot key acts.
    platform->setEventHandler([&application, &recordingRoute](const QVEventRef &event) {
        if (!recordingRoute.routeEvent(event))
            application.sendEvent(event);
    });
    // Controls asked for from outside go the way of their hot keys, repetition included.
    const auto performNamed = [&application, &controller](const QString &name, bool release) {
        QString reason;
        if (const QVEventRef event = controller.performEventForControlNamed(name, release, &reason))
            application.sendEvent(event);
        return reason;
    };
    singleInstance.setPerformHandler(performNamed);
    QVDBusService dbusService(performNamed, [&controller] { return controller.performableControls(); });
    dbusService.registerOnSessionBus();

    QVUnixSignalWatcher signals;
    QObject::connect(&signals, &QVUnixSignalWatcher::terminationRequested, &application,
        [](int) { QVEventParserApplication::quit(); });
    QObject::connect(&application, &QVEventParserApplication::aboutToQuit, &controller,
        &QVMainController::applicationShouldTerminate);

    controller.applicationWillFinishLaunching();
    controller.applicationDidFinishLaunching();
    QVLog(QStringLiteral("started on display %1 with %2 controls, settings in %3")
              .arg(QString::fromLocal8Bit(qgetenv("DISPLAY")))
              .arg(controller.customControlManager().controls().size())
              .arg(defaults.filePath()));
    const int status = QVEventParserApplication::exec();
    QVUserDefaults::setStandardUserDefaults(nullptr);
    return status;
}
