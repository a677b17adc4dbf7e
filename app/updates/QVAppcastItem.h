#pragma once

#include <QString>
#include <QUrl>

// One release offered by an appcast feed.
struct QVAppcastItem {
    QString title;
    QString versionString; // sparkle:version, what versions are compared by
    QString displayVersionString; // sparkle:shortVersionString, else the version
    QString itemDescription; // HTML release notes
    QUrl link; // the release's download page
    QUrl releaseNotesLink; // kept, never loaded
    QString pubDate;
};
