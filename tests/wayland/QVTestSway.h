#pragma once

#include <QImage>
#include <QJsonArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QTemporaryDir>

#include <memory>

// A headless sway of the test's own. It runs as an unprivileged user when the test
// runs as root (sway refuses root), in a runtime folder of its own; clients reach it
// through a socket name in another folder. Everything it starts is stopped by
// process group when the object goes.
class QVTestSway final
{
public:
    // The outputs at start: one headless output (HEADLESS-1), or that and one of the
    // x11 back end on a private Xvfb (X11-1), which removeX11Output ends; the first
    // is the output sway offers first.
    enum class Outputs { Headless, HeadlessThenX11, X11ThenHeadless };

    // A program the rig needs and cannot find, or a null string.
    static QString missingProgram();
    static std::unique_ptr<QVTestSway> start(Outputs outputs, QString *error);
    ~QVTestSway();

    // WAYLAND_DISPLAY and XDG_RUNTIME_DIR for a client of this compositor.
    QString socketName() const { return QStringLiteral("wayland-corvane"); }
    QString runtimeDirectory() const { return m_directory.filePath(QStringLiteral("client")); }
    QProcessEnvironment clientEnvironment() const;

    // A sway command ("output HEADLESS-1 scale 2"); false with the reason on failure.
    bool command(const QString &command, QString *error = nullptr) const;
    // The outputs as swaymsg -t get_outputs lists them.
    QJsonArray outputs() const;
    // What an output shows, as grim captures it; a null image, with the reason, on failure.
    QImage screenshot(const QString &output, QString *error = nullptr) const;
    // Closes the x11 back end's window, as a user closing it would: sway removes its output.
    bool removeX11Output(QString *error) const;
    QString log() const;

private:
    QVTestSway() = default;
    bool startXvfb(QString *error);
    bool startSway(Outputs outputs, QString *error);
    bool waitForSocket(QString *error);
    QString swaymsg(const QStringList &arguments, bool *ok) const;
    static void stop(QProcess &process);

    QTemporaryDir m_directory;
    QProcess m_xvfb;
    QProcess m_sway;
    QString m_xDisplay;
};
