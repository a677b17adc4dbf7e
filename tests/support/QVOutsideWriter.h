#pragma once

#include <QFile>
#include <QSaveFile>
#include <QTest>

// Writes a file the way editors and scripts do, for tests of what watches it.
class QVOutsideWriter final
{
public:
    enum Kind {
        Rename, // a new file renamed over the old one
        InPlace, // truncated and written again at once
        SlowInPlace, // truncated, half written, a pause, then the rest
    };

    // False when the file could not be written.
    static bool write(const QString &path, const QByteArray &contents, Kind kind = Rename)
    {
        if (kind == Rename) {
            QSaveFile file(path);
            return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() && file.commit();
        }
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return false;
        if (kind == InPlace)
            return file.write(contents) == contents.size();
        const QByteArray firstHalf = contents.left(contents.size() / 2);
        if (file.write(firstHalf) != firstHalf.size() || !file.flush())
            return false;
        QTest::qWait(200);
        return file.write(contents.mid(firstHalf.size())) == contents.size() - firstHalf.size();
    }
};
