#pragma once

#include "QVAppcast.h"

#include <QByteArray>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUrl>
#include <chrono>

class QNetworkAccessManager;

// Fetches one appcast feed at a time and nothing else. Only https feeds are read,
// or http ones on the loopback interface (for a feed served on this machine);
// a redirect must keep to the same rule. Every fetch ends with exactly one of
// the two signals, at the latest after the time-out.
class QVAppcastClient final : public QObject
{
    Q_OBJECT

public:
    // Uses the given manager, or one of its own when there is none.
    explicit QVAppcastClient(QNetworkAccessManager *manager = nullptr, QObject *parent = nullptr);
    ~QVAppcastClient() override;

    void setUserAgent(const QByteArray &userAgent) { m_userAgent = userAgent; }
    void setTimeout(std::chrono::milliseconds timeout) { m_timeout = timeout; }
    void setMaximumSize(qint64 bytes) { m_maximumSize = bytes; }

    // Starts fetching; a fetch still running is abandoned without a signal.
    void fetch(const QUrl &feedUrl);
    // Abandons the running fetch without a signal.
    void cancel();
    bool isFetching() const { return m_reply || m_pendingFailure; }

Q_SIGNALS:
    void finished(const QVAppcast &appcast);
    // A sentence for the user.
    void failed(const QString &message);

private:
    void dataArrived();
    void sendRequest(const QUrl &url);
    void redirect(const QUrl &target);
    void replyFinished();
    void timedOut();
    void fail(const QString &message);
    void failLater(const QString &message);
    void dropReply();
    QString errorMessage() const;

    QNetworkAccessManager *m_manager;
    QPointer<QNetworkReply> m_reply;
    QByteArray m_userAgent;
    QByteArray m_data;
    QUrl m_currentUrl;
    bool m_feedIsLoopback = false;
    int m_redirects = 0;
    bool m_pendingFailure = false;
    std::chrono::milliseconds m_timeout { std::chrono::seconds(20) };
    qint64 m_maximumSize = 2 * 1024 * 1024;
    QTimer m_timer;
};
