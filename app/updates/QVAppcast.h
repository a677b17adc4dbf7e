#pragma once

#include "QVAppcastItem.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QList>
#include <optional>

// An RSS 2.0 appcast feed with Sparkle's version attributes, read from bytes.
class QVAppcast final
{
    Q_DECLARE_TR_FUNCTIONS(QVAppcast)

public:
    // The feed's items that carry a version; when there are none, or the bytes are
    // no such feed, isValid() is false and errorString() tells the user why.
    static QVAppcast fromData(const QByteArray &data);

    bool isValid() const { return m_errorString.isEmpty(); }
    QString errorString() const { return m_errorString; }
    const QList<QVAppcastItem> &items() const { return m_items; }

    // The newest item whose version is newer than the given one.
    std::optional<QVAppcastItem> bestItemNewerThan(const QString &currentVersion) const;

private:
    QList<QVAppcastItem> m_items;
    QString m_errorString;
};
