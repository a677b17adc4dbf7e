#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QStringList>

// The test's own Wayland client (wayland_probe.cpp), run as a process: a full-screen
// window on every output, whose report of pointer and keyboard events the test reads
// line by line.
class QVTestWaylandProbe final
{
public:
    explicit QVTestWaylandProbe(const QProcessEnvironment &environment);
    ~QVTestWaylandProbe();

    // Waits for the next unread line that matches, and marks it and all before it read.
    // The match, or an invalid one (with the lines seen so far as a warning) at the deadline.
    QRegularExpressionMatch waitFor(const QString &pattern, int milliseconds = 10000);
    // Forgets the lines read so far: the next wait looks only at what comes later.
    void skipAll();
    // Sends a command (press CODE, release CODE) and waits for the probe's "ok".
    bool send(const QString &command);
    // Sends a command and leaves its answer unread, for a wait on what it causes.
    void post(const QString &command);
    // Every line so far, read or not.
    QStringList lines()
    {
        readLines();
        return m_lines;
    }

private:
    void readLines();
    // The first line from index on that matches; index ends on it.
    QRegularExpressionMatch find(const QString &pattern, qsizetype *index, int milliseconds);

    QProcess m_process;
    QStringList m_lines;
    qsizetype m_next = 0;
    QByteArray m_partial;
};
