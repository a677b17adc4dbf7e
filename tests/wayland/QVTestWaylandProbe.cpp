#include "QVTestWaylandProbe.h"

#include <QDeadlineTimer>

QVTestWaylandProbe::QVTestWaylandProbe(const QProcessEnvironment &environment)
{
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QStringLiteral(CORVANE_WAYLAND_PROBE), QStringList());
}

QVTestWaylandProbe::~QVTestWaylandProbe()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate(); // by its own process id
    if (!m_process.waitForFinished(5000)) {
        m_process.kill();
        m_process.waitForFinished(5000);
    }
}

void QVTestWaylandProbe::readLines()
{
    m_partial += m_process.readAllStandardOutput();
    for (qsizetype end; (end = m_partial.indexOf('\n')) >= 0;) {
        m_lines.append(QString::fromUtf8(m_partial.left(end)));
        m_partial.remove(0, end + 1);
    }
}

QRegularExpressionMatch QVTestWaylandProbe::find(const QString &pattern, qsizetype *index, int milliseconds)
{
    const QRegularExpression expression(QLatin1Char('^') + pattern + QLatin1Char('$'));
    // Compiled now rather than at the first line: a line's arrival is timed by benchmarks.
    expression.optimize();
    QDeadlineTimer deadline(milliseconds);
    for (;;) {
        readLines();
        for (; *index < m_lines.size(); ++*index) {
            QRegularExpressionMatch match = expression.match(m_lines.at(*index));
            if (match.hasMatch())
                return match;
        }
        if (deadline.hasExpired() || m_process.state() == QProcess::NotRunning)
            break;
        m_process.waitForReadyRead(int(qBound(qint64(1), deadline.remainingTime(), qint64(100))));
    }
    qWarning(
        "probe: no line matches %s; it printed:\n%s", qPrintable(pattern), qPrintable(m_lines.join(QLatin1Char('\n'))));
    return {};
}

QRegularExpressionMatch QVTestWaylandProbe::waitFor(const QString &pattern, int milliseconds)
{
    QRegularExpressionMatch match = find(pattern, &m_next, milliseconds);
    if (match.hasMatch())
        ++m_next;
    return match;
}

void QVTestWaylandProbe::skipAll()
{
    readLines();
    m_next = m_lines.size();
}

void QVTestWaylandProbe::post(const QString &command)
{
    m_process.write(command.toUtf8() + '\n');
    m_process.waitForBytesWritten(5000);
}

bool QVTestWaylandProbe::send(const QString &command)
{
    post(command);
    // The answer leaves the lines unread: what the command caused may come before it.
    qsizetype index = m_next;
    return find(QStringLiteral("ok ") + QRegularExpression::escape(command), &index, 10000).hasMatch();
}
