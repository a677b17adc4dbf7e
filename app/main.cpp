#include "QVCommandLine.h"
#include "QVDBusService.h"
#include "QVDoctor.h"
#include "QVEventDispatcher.h"
#include "QVEventParserApplication.h"
#include "QVHotKeyRecordingRoute.h"
#include "QVInstalledResources.h"
#include "QVLog.h"
#include "QVMainController.h"
#include "QVPlatformOpening.h"
#include "QVSingleInstance.h"
#include "QVTimerDelayedPerformer.h"
#include "QVUnixSignalWatcher.h"
#include "QVUserDefaults.h"

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

QString fatalDisplayName;

// Qt ends a failed connection of its own with an abort; Corvane ends it with its message.
void exitOnQtFatal(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type != QtFatalMsg) {
        printLine(stderr, message + u'\n');
        return;
    }
    printLine(
        stderr, QStringLiteral("corvane: cannot use %1: %2\n").arg(fatalDisplayName, message.section(u'\n', 0, 0)));
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
    if (commandLine.showDoctor) {
        QCoreApplication application(argc, argv);
        printLine(stdout, QVDoctor::report(QVDoctor::examine(commandLine.platform)));
        return 0;
    }

    QString error;
    QString notice;
    std::unique_ptr<QVPlatformOpening> opening = QVPlatformOpening::begin(commandLine.platform, &error, &notice);
    if (!notice.isEmpty())
        printLine(stderr, QStringLiteral("corvane: %1\n").arg(notice));
    if (!opening) {
        printLine(stderr, QStringLiteral("corvane: %1.\n").arg(error));
        return 1;
    }
    // Corvane's windows live on the window system it drives.
    qputenv("QT_QPA_PLATFORM", opening->qtPlatformName());
    fatalDisplayName = opening->displayName();

    const QtMessageHandler previousHandler = qInstallMessageHandler(exitOnQtFatal);
    QVEventParserApplication application(argc, argv);
    qInstallMessageHandler(previousHandler);
    QVEventParserApplication::setApplicationName(QStringLiteral("Corvane"));
    QVEventParserApplication::setApplicationVersion(QStringLiteral(CORVANE_VERSION));
    QVEventParserApplication::setQuitOnLastWindowClosed(false);
    QVInstalledResources::installTranslators(application);

    // Before any key is grabbed: a second Corvane on the same settings only asks the first to reopen.
    QVSingleInstance singleInstance(settingsPath);
    switch (singleInstance.claimOrAskToReopen(&error)) {
    case QVSingleInstance::Outcome::Claimed: break;
    case QVSingleInstance::Outcome::AskedToReopen: return 0;
    case QVSingleInstance::Outcome::Failed: printLine(stderr, QStringLiteral("corvane: %1\n").arg(error)); return 1;
    }

    std::unique_ptr<QVPlatform> platform = opening->finish(settingsPath, &error);
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
    QVLog(QStringLiteral("started on %1 with %2 controls, settings in %3")
              .arg(opening->displayName())
              .arg(controller.customControlManager().controls().size())
              .arg(defaults.filePath()));
    const int status = QVEventParserApplication::exec();
    QVUserDefaults::setStandardUserDefaults(nullptr);
    return status;
}
