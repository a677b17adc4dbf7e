#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QPoint>
#include <QProcess>
#include <QString>

#include <xcb/xcb.h>

class QVTestXClient;

// A running corvane on a test server, with its own settings file.
class QVCorvaneProcess final
{
public:
    QVCorvaneProcess(const QString &displayName, const QString &settingsPath);
    // On whatever display the environment names (a Wayland compositor's, say).
    QVCorvaneProcess(const QProcessEnvironment &environment, const QString &settingsPath);
    ~QVCorvaneProcess();

    // For the process not yet started, e.g. QT_SCALE_FACTOR.
    void setEnvironmentVariable(const QString &name, const QString &value);
    // Puts it on a test's private session bus; accessible: with its widgets on the accessibility bus.
    void joinSessionBus(const QString &address, bool accessible = false);
    // Starts and waits until it has registered its hot keys; false on a deadline.
    bool start();
    // Sends the signal and waits for the exit; the exit code, or -1.
    int stop(int signalNumber);
    // What it wrote to standard error so far.
    QString log();
    // The lines of the log that contain the text.
    QStringList logLines(const QString &part) { return log().split(u'\n').filter(part); }
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    // Runs corvane --perform (or --perform-release) as a key binding would, without a
    // display, on this one's settings or others; its exit code, and what it said.
    int perform(const QString &name, bool release, QString *errors, const QString &settingsPath = QString()) const;

    // One stored control; extra keys are merged in.
    static QJsonObject control(qint64 action, quint16 keyCode, quint64 modifierFlags, const QJsonObject &extra = {});
    static void writeSettings(const QString &path, const QJsonObject &settings);
    static QJsonObject readSettings(const QString &path);
    static QByteArray readFile(const QString &path);

    // Taps the key with the modifiers held, the pointer put at a fixed start first;
    // true when the pointer moved by the offset (for a null offset: stayed put).
    static bool tapMovesPointer(
        QVTestXClient &client, xcb_keycode_t key, const QList<xcb_keycode_t> &modifiers, const QPoint &offset);

private:
    QString m_settingsPath;
    QProcess m_process;
    QString m_log;
};
