#pragma once

#include "QVPlatform.h"
#include "QVPlatformChoice.h"

#include <QByteArray>
#include <QString>

#include <memory>

class QVWaylandPlatform;
class QVX11Connection;

// Opens the window system's back end in two halves around the making of Qt's
// application. What can fail is tried before it, so that Corvane says plainly
// what is missing, and a Wayland desktop without the wlroots protocols falls back
// to XWayland while Qt may still be pointed there; what needs the event loop
// comes after.
class QVPlatformOpening final
{
public:
    // Nothing, with error set, when no back end can run. notice: what the user
    // should know about the choice (a fallback), else left alone.
    static std::unique_ptr<QVPlatformOpening> begin(const QString &requested, QString *error, QString *notice);
    ~QVPlatformOpening();
    QVPlatformOpening(const QVPlatformOpening &) = delete;
    QVPlatformOpening &operator=(const QVPlatformOpening &) = delete;

    QVPlatformChoice::Kind kind() const { return m_kind; }
    // Qt's platform plugin for Corvane's own windows: the same window system.
    QByteArray qtPlatformName() const;
    // The display, as messages and the log name it.
    QString displayName() const;
    // Once the application exists: the platform, or nothing with error set. The
    // settings file names the desktop's record of Corvane's shortcuts.
    std::unique_ptr<QVPlatform> finish(const QString &settingsPath, QString *error);

private:
    explicit QVPlatformOpening(QVPlatformChoice::Kind kind);
    static std::unique_ptr<QVPlatformOpening> beginX11(QString *error);
    static std::unique_ptr<QVPlatformOpening> beginWayland(QString *error);
    // Where the desktop's shortcut portal fires, hot keys go through it.
    static void attachDesktopHotKeys(QVWaylandPlatform &platform, const QString &settingsPath);

    QVPlatformChoice::Kind m_kind;
    std::unique_ptr<QVX11Connection> m_x11;
    std::unique_ptr<QVWaylandPlatform> m_wayland;
};
