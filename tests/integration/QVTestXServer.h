#pragma once

#include <QList>
#include <QProcess>
#include <QRect>
#include <QString>
#include <QTemporaryDir>

#include <memory>

// An X server of the test's own on a free display number, stopped by its
// process id when the object goes.
class QVTestXServer final
{
public:
    struct Monitor {
        QString name;
        QRect rootRect;
        bool primary = false;
    };

    // Three monitors of different sizes in a 4160x1080 root: L 1280x800 at (0,280),
    // the primary P 1920x1080 at (1280,0), R 960x600 at (3200,100).
    static QList<Monitor> threeMonitors();

    // One screen of the given size. A server that resets starts afresh whenever its
    // last client leaves, as a display manager's server does.
    static std::unique_ptr<QVTestXServer> startXvfb(int width, int height, QString *error, bool resets = false);
    // An Xvfb for this process's own Qt application, named in $DISPLAY before the
    // application is made; null (the reason printed) when it cannot start.
    static std::unique_ptr<QVTestXServer> startXvfbForThisProcess(int width, int height);
    // Xorg with the dummy driver and RandR monitors carved out of one large screen.
    static std::unique_ptr<QVTestXServer> startXorg(
        int width, int height, const QList<Monitor> &monitors, QString *error);
    ~QVTestXServer();

    QString displayName() const { return QStringLiteral(":%1").arg(m_number); }
    // Runs an X client program against this server; its standard output, or a null string on failure.
    QString run(const QString &program, const QStringList &arguments) const;
    QString temporaryPath(const QString &name) const { return m_directory.filePath(name); }

private:
    QVTestXServer() = default;
    static int freeDisplayNumber();
    bool waitUntilReady(QString *error);

    QTemporaryDir m_directory;
    QProcess m_process;
    int m_number = 0;
};
