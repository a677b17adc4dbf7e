#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QTcpServer>
#include <QUrl>

class QTcpSocket;

// A small HTTP/1.1 server on the loopback interface that answers each path as
// told and records every request it gets.
class QVFeedServer final : public QObject
{
    Q_OBJECT

public:
    struct Route {
        enum Kind { Answer, Stall, Endless };
        Kind kind = Answer;
        QByteArray status = "200 OK";
        QByteArray body;
        QByteArray location; // for redirects
    };

    QVFeedServer();

    void setRoute(const QByteArray &path, const Route &route) { m_routes.insert(path, route); }
    QUrl url(const QByteArray &path) const;
    quint16 port() const { return m_server.serverPort(); }
    // The paths asked for, in order, and the User-Agent of each request.
    const QList<QByteArray> &requests() const { return m_requests; }
    const QList<QByteArray> &userAgents() const { return m_userAgents; }

private:
    void accept();
    void readRequest(QTcpSocket *socket);
    void answer(QTcpSocket *socket, const QByteArray &path);
    void writeEndlessly(QTcpSocket *socket);

    QTcpServer m_server;
    QHash<QByteArray, Route> m_routes;
    QList<QByteArray> m_requests;
    QList<QByteArray> m_userAgents;
};
