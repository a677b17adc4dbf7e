#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QString>

// A running corvane on a test server, with its own settings file.
class QVCorvaneProcess final
{
public:
    QVCorvaneProcess(const QString &displayName, const QString &settingsPath);
    ~QVCorvaneProcess();

    // For the process not yet started, e.g. QT_SCALE_FACTOR.
    void setEnvironmentVariable(const QString &name, const QString &value);
    // Starts and waits until it has registered its hot keys; false on a deadline.
    bool start();
    // Sends the signal and waits for the exit; the exit code, or -1.
    int stop(int signalNumber);
    // What it wrote to standard error so far.
    QString log();
    bool isRunning() const { return m_process.state() == QProcess::Running; }

    // One stored control; extra keys are merged in.
    static QJsonObject control(qint64 action, quint16 keyCode, quint64 modifierFlags,
                               const QJsonObject &extra = {});
    static void writeSettings(const QString &path, const QJsonObject &settings);
    static QJsonObject readSettings(const QString &path);

private:
    QProcess m_process;
    QString m_log;
};
