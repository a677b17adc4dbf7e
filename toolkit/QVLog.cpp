#include "QVLog.h"

#include "QVUserDefaults.h"

#include <cstdio>
#include <syslog.h>

void QVLog(const QString &message)
{
    static const bool opened = [] {
        openlog("corvane", LOG_PID, LOG_USER);
        return true;
    }();
    Q_UNUSED(opened);
    const QByteArray utf8 = message.toUtf8();
    syslog(LOG_NOTICE, "%s", utf8.constData());
    std::fprintf(stderr, "corvane: %s\n", utf8.constData());
}

bool QVDebugLogEnabled()
{
    const QVUserDefaults *defaults = QVUserDefaults::standardUserDefaults();
    return defaults && defaults->boolForKey(QStringLiteral("QVDebugLog"));
}

void QVDebugLog(const QString &message)
{
    if (QVDebugLogEnabled())
        QVLog(message);
}
