#include "QVAppcast.h"

#include "QVVersionComparator.h"

#include <QXmlStreamReader>

namespace
{

const QString sparkleNamespace = QStringLiteral("http://www.andymatuschak.org/xml-namespaces/sparkle");

bool isSparkle(const QXmlStreamReader &reader, QLatin1String name)
{
    return reader.namespaceUri() == sparkleNamespace && reader.name() == name;
}

bool isPlain(const QXmlStreamReader &reader, QLatin1String name)
{
    return reader.namespaceUri().isEmpty() && reader.name() == name;
}

// A feed's links are web pages; anything else (javascript:, file:, relative paths) is dropped.
QUrl webAddress(const QString &text)
{
    const QUrl url(text.trimmed(), QUrl::StrictMode);
    const QString scheme = url.scheme().toLower();
    const bool web = scheme == QLatin1String("https") || scheme == QLatin1String("http");
    return url.isValid() && web && !url.host().isEmpty() ? url : QUrl();
}

void readEnclosure(const QXmlStreamReader &reader, QVAppcastItem &item)
{
    const QXmlStreamAttributes attributes = reader.attributes();
    const QStringView version = attributes.value(sparkleNamespace, QLatin1String("version"));
    const QStringView shortVersion = attributes.value(sparkleNamespace, QLatin1String("shortVersionString"));
    // A version given on the item itself takes precedence over its enclosure's.
    if (item.versionString.isEmpty())
        item.versionString = version.trimmed().toString();
    if (item.displayVersionString.isEmpty())
        item.displayVersionString = shortVersion.trimmed().toString();
}

QVAppcastItem readItem(QXmlStreamReader &reader)
{
    QVAppcastItem item;
    while (reader.readNextStartElement()) {
        if (isPlain(reader, QLatin1String("title")))
            item.title = reader.readElementText(QXmlStreamReader::IncludeChildElements).trimmed();
        else if (isPlain(reader, QLatin1String("description")))
            item.itemDescription = reader.readElementText(QXmlStreamReader::IncludeChildElements).trimmed();
        else if (isPlain(reader, QLatin1String("link")))
            item.link = webAddress(reader.readElementText());
        else if (isPlain(reader, QLatin1String("pubDate")))
            item.pubDate = reader.readElementText().trimmed();
        else if (isSparkle(reader, QLatin1String("version")))
            item.versionString = reader.readElementText().trimmed();
        else if (isSparkle(reader, QLatin1String("shortVersionString")))
            item.displayVersionString = reader.readElementText().trimmed();
        else if (isSparkle(reader, QLatin1String("releaseNotesLink")))
            item.releaseNotesLink = webAddress(reader.readElementText());
        else if (isPlain(reader, QLatin1String("enclosure"))) {
            readEnclosure(reader, item);
            reader.skipCurrentElement();
        } else
            reader.skipCurrentElement();
    }
    if (item.displayVersionString.isEmpty())
        item.displayVersionString = item.versionString;
    return item;
}

QList<QVAppcastItem> readChannel(QXmlStreamReader &reader)
{
    QList<QVAppcastItem> items;
    while (reader.readNextStartElement()) {
        if (!isPlain(reader, QLatin1String("item"))) {
            reader.skipCurrentElement();
            continue;
        }
        QVAppcastItem item = readItem(reader);
        if (!item.versionString.isEmpty())
            items.append(item);
    }
    return items;
}

} // namespace

QVAppcast QVAppcast::fromData(const QByteArray &data)
{
    QVAppcast appcast;
    if (data.trimmed().isEmpty()) {
        appcast.m_errorString = tr("The update feed is empty.");
        return appcast;
    }
    QXmlStreamReader reader(data);
    bool sawChannel = false;
    if (reader.readNextStartElement() && isPlain(reader, QLatin1String("rss"))) {
        while (reader.readNextStartElement()) {
            if (isPlain(reader, QLatin1String("channel")) && !sawChannel) {
                sawChannel = true;
                appcast.m_items = readChannel(reader);
            } else
                reader.skipCurrentElement();
        }
    }
    // Read to the end, so that an error after the channel still counts.
    while (!reader.atEnd())
        reader.readNext();
    if (reader.hasError()) {
        appcast.m_items.clear();
        appcast.m_errorString = tr("The update feed is damaged (line %1: %2).")
                                    .arg(QString::number(reader.lineNumber()), reader.errorString());
    } else if (!sawChannel)
        appcast.m_errorString = tr("The update feed is not an appcast: it has no channel.");
    else if (appcast.m_items.isEmpty())
        appcast.m_errorString = tr("The update feed lists no versions.");
    return appcast;
}

std::optional<QVAppcastItem> QVAppcast::bestItemNewerThan(const QString &currentVersion) const
{
    std::optional<QVAppcastItem> best;
    for (const QVAppcastItem &item : m_items) {
        const QString &bar = best ? best->versionString : currentVersion;
        if (QVVersionComparator::compareVersions(item.versionString, bar) > 0)
            best = item;
    }
    return best;
}
