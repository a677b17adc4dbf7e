#include "QVFeedServer.h"

#include <QTcpSocket>

namespace
{

constexpr qint64 endlessChunk = 64 * 1024;
// Ends an "endless" body even when the client under test forgets to stop reading.
constexpr qint64 endlessLimit = 256 * 1024 * 1024;

QByteArray headerValue(const QByteArray &request, const QByteArray &name)
{
    for (const QByteArray &line : request.split('\n')) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0 && line.left(colon).trimmed().toLower() == name)
            return line.mid(colon + 1).trimmed();
    }
    return {};
}

} // namespace

QVFeedServer::QVFeedServer()
{
    m_server.listen(QHostAddress::LocalHost);
    connect(&m_server, &QTcpServer::newConnection, this, &QVFeedServer::accept);
}

QUrl QVFeedServer::url(const QByteArray &path) const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(port()).arg(QString::fromLatin1(path)));
}

void QVFeedServer::accept()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readRequest(socket); });
    }
}

void QVFeedServer::readRequest(QTcpSocket *socket)
{
    QByteArray request = socket->property("request").toByteArray() + socket->readAll();
    socket->setProperty("request", request);
    if (!request.contains("\r\n\r\n") || socket->property("answered").toBool())
        return;
    socket->setProperty("answered", true);
    const QList<QByteArray> requestLine = request.left(request.indexOf("\r\n")).split(' ');
    const QByteArray path = requestLine.value(1);
    m_requests.append(path);
    m_userAgents.append(headerValue(request, "user-agent"));
    answer(socket, path);
}

void QVFeedServer::answer(QTcpSocket *socket, const QByteArray &path)
{
    const auto found = m_routes.constFind(path);
    if (found == m_routes.constEnd()) {
        socket->write("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
        socket->disconnectFromHost();
        return;
    }
    const Route &route = *found;
    if (route.kind == Route::Stall)
        return;
    QByteArray head = "HTTP/1.1 " + route.status + "\r\nContent-Type: application/rss+xml\r\nConnection: close\r\n";
    if (!route.location.isEmpty())
        head += "Location: " + route.location + "\r\n";
    if (route.kind == Route::Endless) {
        socket->write(head + "\r\n");
        connect(socket, &QTcpSocket::bytesWritten, this, [this, socket] { writeEndlessly(socket); });
        writeEndlessly(socket);
        return;
    }
    socket->write(head + "Content-Length: " + QByteArray::number(route.body.size()) + "\r\n\r\n" + route.body);
    socket->disconnectFromHost();
}

void QVFeedServer::writeEndlessly(QTcpSocket *socket)
{
    const qint64 written = socket->property("written").toLongLong();
    if (socket->bytesToWrite() > endlessChunk || socket->state() != QAbstractSocket::ConnectedState)
        return;
    if (written > endlessLimit) {
        socket->disconnectFromHost();
        return;
    }
    socket->write(QByteArray(endlessChunk, ' '));
    socket->setProperty("written", written + endlessChunk);
}
