#include "QVAppcastClient.h"

#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

namespace
{

constexpr int maximumRedirects = 5;

QString displayAddress(const QUrl &url)
{
    return url.toDisplayString(QUrl::RemoveUserInfo);
}

bool isLoopbackUrl(const QUrl &url)
{
    const QString host = url.host();
    if (host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0)
        return true;
    const QHostAddress address(host);
    return !address.isNull() && address.isLoopback();
}

// Whether a feed may be fetched from the address (the same rule for redirects,
// where the loopback exception holds only when the feed was on loopback).
bool isAllowedUrl(const QUrl &url, bool loopbackAllowed = true)
{
    if (!url.isValid() || url.host().isEmpty())
        return false;
    const QString scheme = url.scheme().toLower();
    if (scheme == QLatin1String("https"))
        return true;
    return scheme == QLatin1String("http") && loopbackAllowed && isLoopbackUrl(url);
}

} // namespace

QVAppcastClient::QVAppcastClient(QNetworkAccessManager *manager, QObject *parent)
    : QObject(parent)
    , m_manager(manager ? manager : new QNetworkAccessManager(this))
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &QVAppcastClient::timedOut);
}

QVAppcastClient::~QVAppcastClient()
{
    dropReply();
}

void QVAppcastClient::fetch(const QUrl &feedUrl)
{
    cancel();
    if (!isAllowedUrl(feedUrl)) {
        failLater(tr("The update feed %1 is not a secure (https) address, so it was not contacted.")
                      .arg(displayAddress(feedUrl)));
        return;
    }
    m_feedIsLoopback = isLoopbackUrl(feedUrl);
    m_redirects = 0;
    m_timer.start(m_timeout); // for the whole check, redirects included
    sendRequest(feedUrl);
}

// Redirects are followed here rather than by Qt, so that each target is judged before it is contacted.
void QVAppcastClient::sendRequest(const QUrl &url)
{
    m_currentUrl = url;
    m_data.clear();
    QNetworkRequest request(url);
    request.setRawHeader("User-Agent", m_userAgent);
    request.setRawHeader("Accept", "application/rss+xml, application/xml;q=0.9, text/xml;q=0.8");
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);

    m_reply = m_manager->get(request);
    connect(m_reply, &QNetworkReply::readyRead, this, &QVAppcastClient::dataArrived);
    connect(m_reply, &QNetworkReply::finished, this, &QVAppcastClient::replyFinished);
}

void QVAppcastClient::cancel()
{
    m_pendingFailure = false;
    m_timer.stop();
    dropReply();
}

void QVAppcastClient::dropReply()
{
    if (!m_reply)
        return;
    QNetworkReply *reply = m_reply;
    m_reply = nullptr;
    reply->disconnect(this);
    reply->abort();
    reply->deleteLater();
}

void QVAppcastClient::dataArrived()
{
    // Ask for exactly what the cap leaves, so an endless answer is never held.
    const qint64 room = m_maximumSize - m_data.size();
    m_data += m_reply->read(room + 1);
    if (m_data.size() > m_maximumSize)
        fail(tr("The update feed is larger than %1 KiB; the check was stopped.")
                 .arg(QString::number(m_maximumSize / 1024)));
}

void QVAppcastClient::redirect(const QUrl &target)
{
    if (++m_redirects > maximumRedirects) {
        fail(tr("The update feed redirects too often; the check was stopped."));
        return;
    }
    const QUrl resolved = m_currentUrl.resolved(target);
    if (!isAllowedUrl(resolved, m_feedIsLoopback)) {
        fail(tr("The update feed redirects to %1, which is not a secure (https) address; the check was stopped.")
                 .arg(displayAddress(resolved)));
        return;
    }
    dropReply();
    sendRequest(resolved);
}

void QVAppcastClient::replyFinished()
{
    const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QUrl target = m_reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (status >= 300 && status < 400 && target.isValid() && !target.isEmpty()) {
        redirect(target);
        return;
    }
    if (m_reply->error() != QNetworkReply::NoError || status < 200 || status > 299) {
        fail(errorMessage());
        return;
    }
    dataArrived();
    if (!m_reply)
        return; // over the cap
    const QVAppcast appcast = QVAppcast::fromData(m_data);
    m_timer.stop();
    dropReply();
    m_data.clear();
    if (appcast.isValid())
        Q_EMIT finished(appcast);
    else
        Q_EMIT failed(appcast.errorString());
}

QString QVAppcastClient::errorMessage() const
{
    const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status == 404 || status == 410)
        return tr("The update feed was not found on the server (HTTP %1).").arg(status);
    if (status >= 400)
        return tr("The update server answered with an error (HTTP %1).")
            .arg(QStringLiteral("%1 %2")
                     .arg(QString::number(status),
                         m_reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString())
                     .trimmed());
    if (m_reply->error() == QNetworkReply::NoError)
        return tr("The update server answered with an error (HTTP %1).").arg(status);
    return tr("The update server could not be reached: %1").arg(m_reply->errorString());
}

void QVAppcastClient::timedOut()
{
    fail(tr("The update server did not answer in time; the check was stopped."));
}

void QVAppcastClient::fail(const QString &message)
{
    cancel();
    m_data.clear();
    Q_EMIT failed(message);
}

// A refusal before any request is reported from the event loop, like every other ending.
void QVAppcastClient::failLater(const QString &message)
{
    m_pendingFailure = true;
    QMetaObject::invokeMethod(
        this,
        [this, message] {
            if (!m_pendingFailure)
                return;
            m_pendingFailure = false;
            Q_EMIT failed(message);
        },
        Qt::QueuedConnection);
}
