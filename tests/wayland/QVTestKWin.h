#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QTemporaryDir>

#include <memory>

// A virtual KWin of the test's own (kwin_wayland --virtual, software rendering), in a
// runtime folder and home of its own. Its data folder may hold a desktop entry that
// grants the test's own executable KWin's fake input. Stopped by process group.
class QVTestKWin final
{
public:
    // Whether the desktop entry naming the test's executable is in place when KWin starts.
    enum class FakeInput { Granted, NotGranted };

    // A program the rig needs and cannot find, or a null string.
    static QString missingProgram();
    // scale: of every output (--scale), the outputs' pixels staying 1280x800.
    static std::unique_ptr<QVTestKWin> start(int outputCount, FakeInput fakeInput, double scale, QString *error);
    ~QVTestKWin();

    // WAYLAND_DISPLAY and XDG_RUNTIME_DIR for a client of this compositor.
    QString socketName() const { return QStringLiteral("wayland-corvane-kwin"); }
    QString runtimeDirectory() const { return m_directory.filePath(QStringLiteral("runtime")); }
    QProcessEnvironment clientEnvironment() const;
    QString log() const;

private:
    QVTestKWin() = default;
    bool writeDesktopEntry(QString *error) const;
    bool waitForSocket(QString *error);

    QTemporaryDir m_directory;
    QProcess m_kwin;
};
