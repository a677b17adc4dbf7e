// How long a control performed from outside takes to move the pointer on a headless
// sway this program starts, with a corvane of its own on it: `corvane --perform`
// started as a new process (as a compositor's key binding does), and
// org.corvane.Corvane.Perform on the session bus of $DBUS_SESSION_BUS_ADDRESS. Beside
// them, the floor: a motion of the probe client's own virtual pointer. All three end
// when the probe's full-screen window reports the motion, read the same way. Samples
// are interleaved; the probe puts the pointer back before each.
//
//   wayland_perform_latency CORVANE SETTINGS NAME [SAMPLES=100]

#include "QVTestSway.h"
#include "QVTestWaylandProbe.h"
#include "perform_samples.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QThread>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace
{

// Corvane's pointer model starts in the middle of the output and moves along its row:
// never back onto this start, so each of its motions is a real one.
constexpr int startX = 400;
constexpr int startY = 300;
constexpr int timeoutMilliseconds = 2000;
constexpr int startMilliseconds = 20000;
const QString outputCommand = QStringLiteral("output HEADLESS-1 resolution 1280x800 position 0 0 scale 1");

QString moveCommand(int x, int y)
{
    return QStringLiteral("move %1 %2").arg(x).arg(y);
}

// The pointer as the probe's window sees it.
class ProbedPointer final
{
public:
    explicit ProbedPointer(QVTestWaylandProbe &probe)
        : m_probe(probe)
    {
    }

    void reset()
    {
        m_probe.send(moveCommand(startX, startY));
        m_probe.skipAll();
    }
    void nudge() { m_probe.post(moveCommand(startX + 1, startY)); }
    double waitForMove(const QElapsedTimer &timer)
    {
        const bool moved = m_probe.waitFor(QStringLiteral("(enter|motion) .*"), timeoutMilliseconds).hasMatch();
        return moved ? double(timer.nsecsElapsed()) / 1000.0 : -1;
    }

private:
    QVTestWaylandProbe &m_probe;
};

// Headless sway with one output, the probe's window on it and corvane driving its
// pointer; corvane goes first, sway (by process group) last.
class Rig final
{
public:
    ~Rig();
    bool start(const QString &corvane, const QString &settings, QString *error);
    QVTestWaylandProbe &probe() const { return *m_probe; }
    // sway's version, the output's size and the cores, for the figures' header.
    QString setup() const;

private:
    bool startCorvane(const QString &corvane, const QString &settings, QString *error);
    QString corvaneLog() const;

    std::unique_ptr<QVTestSway> m_sway;
    std::unique_ptr<QVTestWaylandProbe> m_probe;
    QTemporaryDir m_directory;
    QProcess m_corvane;
};

Rig::~Rig()
{
    if (m_corvane.state() == QProcess::NotRunning)
        return;
    m_corvane.terminate(); // by its own process id; QProcess kills it if this takes too long
    m_corvane.waitForFinished(5000);
}

bool Rig::start(const QString &corvane, const QString &settings, QString *error)
{
    m_sway = QVTestSway::start(QVTestSway::Outputs::Headless, error);
    if (!m_sway || !m_sway->command(outputCommand, error))
        return false;
    // `corvane --perform` finds the running corvane through the runtime folder.
    const QProcessEnvironment environment = m_sway->clientEnvironment();
    for (const QString &name : { QStringLiteral("XDG_RUNTIME_DIR"), QStringLiteral("WAYLAND_DISPLAY") })
        qputenv(qPrintable(name), environment.value(name).toLocal8Bit());
    qunsetenv("DISPLAY");
    m_probe = std::make_unique<QVTestWaylandProbe>(environment);
    if (!m_probe->waitFor(QStringLiteral("configured HEADLESS-1 .*")).hasMatch()) {
        *error = QStringLiteral("the probe has no window");
        return false;
    }
    return startCorvane(corvane, settings, error);
}

bool Rig::startCorvane(const QString &corvane, const QString &settings, QString *error)
{
    m_corvane.setStandardErrorFile(m_directory.filePath(QStringLiteral("corvane.log")));
    m_corvane.start(corvane, { QStringLiteral("--settings"), settings });
    QDeadlineTimer deadline(startMilliseconds);
    while (!corvaneLog().contains(QLatin1String("started on Wayland"))) {
        if (deadline.hasExpired() || m_corvane.waitForFinished(20)) {
            *error = QStringLiteral("corvane did not start on the Wayland display:\n%1").arg(corvaneLog());
            return false;
        }
    }
    return true;
}

QString Rig::corvaneLog() const
{
    QFile file(m_directory.filePath(QStringLiteral("corvane.log")));
    return file.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(file.readAll()) : QString();
}

QString Rig::setup() const
{
    QProcess version;
    version.start(QStringLiteral("sway"), { QStringLiteral("--version") });
    version.waitForFinished(5000);
    const QJsonObject output = m_sway->outputs().first().toObject();
    const QJsonObject rect = output.value(QLatin1String("rect")).toObject();
    return QStringLiteral("headless %1, %2 %3x%4, private session bus (%5 cores)")
        .arg(QString::fromLocal8Bit(version.readAllStandardOutput()).trimmed(),
            output.value(QLatin1String("name")).toString())
        .arg(rect.value(QLatin1String("width")).toInt())
        .arg(rect.value(QLatin1String("height")).toInt())
        .arg(QThread::idealThreadCount());
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc < 4) {
        std::fprintf(stderr, "usage: wayland_perform_latency CORVANE SETTINGS NAME [SAMPLES]\n");
        return 2;
    }
    if (const QString missing = QVTestSway::missingProgram(); !missing.isEmpty()) {
        std::fprintf(stderr, "wayland_perform_latency: %s is not installed\n", qPrintable(missing));
        return 1;
    }
    const QString corvane = QString::fromLocal8Bit(argv[1]);
    const QString settings = QString::fromLocal8Bit(argv[2]);
    endSamplingOnSignals();
    Rig rig;
    QString error;
    if (!rig.start(corvane, settings, &error)) {
        std::fprintf(stderr, "wayland_perform_latency: %s\n", qPrintable(error));
        return 1;
    }
    std::printf("%s\n", qPrintable(rig.setup()));
    ProbedPointer pointer(rig.probe());
    samplePerform(pointer, corvane, settings, QString::fromLocal8Bit(argv[3]), argc > 4 ? std::atoi(argv[4]) : 100)
        .print("floor: virtual pointer motion posted, seen");
    return 0;
}
