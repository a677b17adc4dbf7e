#include "QVUpdateStatusText.h"

#include <QDateTime>

const QString QVUpdateStatusText::currentVersionKey = QStringLiteral("Current Version");
const QString QVUpdateStatusText::updateVersionKey = QStringLiteral("Update Version");
const QString QVUpdateStatusText::checkDateKey = QStringLiteral("Check Date");

bool QVUpdateStatusText::hasVerdict(const QJsonObject &status, const QString &applicationVersion)
{
    return !applicationVersion.isEmpty() && status.value(currentVersionKey).toString() == applicationVersion
        && status.value(updateVersionKey).isString();
}

QString QVUpdateStatusText::statusLine(
    const QJsonObject &status, const QString &applicationName, const QString &applicationVersion)
{
    if (!hasVerdict(status, applicationVersion))
        return {};
    const QString updateVersion = status.value(updateVersionKey).toString();
    if (updateVersion.isEmpty())
        return tr("%1 is up to date").arg(applicationName);
    return tr("%1 %2 is now available").arg(applicationName, updateVersion);
}

QString QVUpdateStatusText::dateLine(
    const QJsonObject &status, const QString &applicationVersion, const QLocale &locale)
{
    if (!hasVerdict(status, applicationVersion) || !status.value(checkDateKey).isDouble())
        return {};
    const qint64 seconds = qint64(status.value(checkDateKey).toDouble());
    const QDateTime date = QDateTime::fromSecsSinceEpoch(seconds).toLocalTime();
    //: Date and time of the last update check, in QDateTime's format notation
    const QString format = tr("MMMM d, yyyy - h:mm AP");
    return tr("Last check: %1").arg(locale.toString(date, format));
}
