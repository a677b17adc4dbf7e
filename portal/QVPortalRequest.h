#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariantMap>

#include <functional>

// One call of the portal's Request pattern: the answer of a method comes later
// as Response(u code, a{sv} results) on a request object whose path the caller
// can know in advance from its handle_token. The object deletes itself once
// it has answered.
class QVPortalRequest final : public QObject
{
    Q_OBJECT

public:
    enum Code : uint {
        Success = 0,
        Cancelled = 1, // the user refused
        Failed = 2, // anything else, also an error reply or no answer in time
    };
    using Callback = std::function<void(uint code, const QVariantMap &results)>;

    QVPortalRequest(const QDBusConnection &connection, QObject *parent = nullptr);

    // A token unique within this process, for the call's handle_token option.
    QString token() const { return m_token; }
    static QString requestPath(const QString &uniqueName, const QString &token);
    // The part of request and session paths that stands for the caller (":1.42" -> "1_42").
    static QString senderPart(const QString &uniqueName);

    // Subscribes to the response first, then sends the call (its options must
    // carry token() as handle_token).
    void send(const QDBusMessage &call, Callback callback, int timeoutMs = defaultTimeoutMs);

    static constexpr int defaultTimeoutMs = 120000; // the desktop may ask the user first

private Q_SLOTS:
    void onResponse(uint code, const QVariantMap &results);

private:
    bool subscribe(const QString &path);
    void unsubscribe();
    void finish(uint code, const QVariantMap &results);

    QDBusConnection m_connection;
    QString m_token;
    QString m_path;
    Callback m_callback;
    QTimer m_timeout;
    bool m_finished = false;
};
