#pragma once

#include <QCoreApplication>
#include <QJsonObject>
#include <QLocale>
#include <QString>

// The two status lines of the Updates page, made from the remembered outcome of
// the last check (the "QVSparkleWrapper Status" dictionary).
class QVUpdateStatusText final
{
    Q_DECLARE_TR_FUNCTIONS(QVUpdateStatusText)

public:
    static const QString currentVersionKey;
    static const QString updateVersionKey;
    static const QString checkDateKey;

    // Both lines are empty unless the status was recorded by this very version of
    // the application and holds a verdict: after an update the page starts empty.
    static bool hasVerdict(const QJsonObject &status, const QString &applicationVersion);
    // "Corvane 2.1 is now available", "Corvane is up to date", or empty.
    static QString statusLine(
        const QJsonObject &status, const QString &applicationName, const QString &applicationVersion);
    // "Last check: March 5, 2011 - 9:07 AM" in local time, or empty.
    static QString dateLine(
        const QJsonObject &status, const QString &applicationVersion, const QLocale &locale = QLocale());
};
