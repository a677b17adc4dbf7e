#include "QVTestWaylandSession.h"

#include <QFile>

bool QVTestWaylandSession::setUp(
    QVTestSway::Outputs outputs, const QStringList &commands, bool withProbe, QString *error)
{
    const QString key = QString::number(int(outputs)) + commands.join(QLatin1Char(';')) + QString::number(withProbe);
    if (key == m_key && m_platform)
        return true;
    reset();
    m_sway = QVTestSway::start(outputs, error);
    if (!m_sway)
        return false;
    for (const QString &command : commands) {
        if (!m_sway->command(command, error))
            return false;
    }
    if (withProbe) {
        m_probe = std::make_unique<QVTestWaylandProbe>(m_sway->clientEnvironment());
        for (qsizetype i = 0; i < m_sway->outputs().size(); ++i) {
            if (!m_probe->waitFor(QStringLiteral("configured .*")).hasMatch()) {
                *error = QStringLiteral("the probe has no window on every output");
                return false;
            }
        }
    }
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_sway->runtimeDirectory()));
    qputenv("WAYLAND_DISPLAY", m_sway->socketName().toUtf8());
    m_platform = QVWaylandPlatform::open(error);
    if (m_platform)
        m_key = key;
    return m_platform != nullptr;
}

void QVTestWaylandSession::discard()
{
    m_key.clear();
}

void QVTestWaylandSession::reset()
{
    m_platform.reset();
    m_probe.reset();
    m_sway.reset();
    m_key.clear();
}

void QVTestWaylandSession::stopSway()
{
    m_probe.reset();
    m_sway.reset();
    m_key.clear();
}

bool QVTestWaylandSession::park(const QVPoint &global, const QString &output, const QPoint &pixel)
{
    m_probe->skipAll();
    return m_platform->postMouseMoved({ global.x + 1, global.y })
        && m_probe->waitFor(pointerAt(output, pixel + QPoint(1, 0))).hasMatch() && m_platform->postMouseMoved(global)
        && m_probe->waitFor(pointerAt(output, pixel)).hasMatch();
}

QString QVTestWaylandSession::pointerAt(const QString &output, const QPoint &pixel)
{
    return QStringLiteral("(enter|motion) %1 %2\\.\\d+ %3\\.\\d+").arg(output).arg(pixel.x()).arg(pixel.y());
}

QStringList QVTestWaylandSession::scaledAndTurned()
{
    return { QStringLiteral("output HEADLESS-1 resolution 1792x1080 position 0 0 scale 1"),
        QStringLiteral("output X11-1 resolution 2560x1440 position 1792 0 scale 2 transform 90") };
}
