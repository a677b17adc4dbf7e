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

void QVDebugLog(const QString &message)
{
    const QVUserDefaults *defaults = QVUserDefaults::standardUserDefaults();
    if (defaults && defaults->boolForKey(QStringLiteral("QVDebugLog")))
        QVLog(message);
}
