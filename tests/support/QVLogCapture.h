#pragma once

#include <QFile>
#include <QString>
#include <QStringList>
#include <QTemporaryFile>

#include <cstdio>
#include <unistd.h>

// Collects what the log writes to standard error while it lives, and hands it
// on to the real standard error when it goes.
class QVLogCapture final
{
public:
    QVLogCapture()
    {
        m_file.open();
        std::fflush(stderr);
        m_savedDescriptor = ::dup(STDERR_FILENO);
        ::dup2(m_file.handle(), STDERR_FILENO);
    }
    ~QVLogCapture()
    {
        const QByteArray captured = contents();
        ::dup2(m_savedDescriptor, STDERR_FILENO);
        ::close(m_savedDescriptor);
        std::fputs(captured.constData(), stderr);
    }
    QVLogCapture(const QVLogCapture &) = delete;
    QVLogCapture &operator=(const QVLogCapture &) = delete;

    QString text() { return QString::fromUtf8(contents()); }
    // The lines that contain the text.
    QStringList lines(const QString &part) { return text().split(u'\n').filter(part); }

private:
    QByteArray contents()
    {
        std::fflush(stderr);
        QFile reader(m_file.fileName()); // an offset of its own, apart from the writer's
        return reader.open(QIODevice::ReadOnly) ? reader.readAll() : QByteArray();
    }

    QTemporaryFile m_file;
    int m_savedDescriptor = -1;
};
