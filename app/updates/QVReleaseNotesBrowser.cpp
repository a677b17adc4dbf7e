#include "QVReleaseNotesBrowser.h"

#include <QRegularExpression>

namespace
{

// data:[<media type>][;base64],<data>
QByteArray dataUrlContents(const QUrl &url)
{
    const QByteArray text = url.toEncoded();
    const qsizetype comma = text.indexOf(',');
    if (comma < 0)
        return {};
    const QByteArray header = text.mid(5, comma - 5);
    const QByteArray payload = QByteArray::fromPercentEncoding(text.mid(comma + 1));
    return header.endsWith(";base64") ? QByteArray::fromBase64(payload) : payload;
}

// The HTML without script elements (QTextBrowser runs none, but they would show as text).
QString withoutScripts(QString html)
{
    // An unterminated script element takes the rest of the text with it.
    static const QRegularExpression script(QStringLiteral("<script\\b.*?(</script\\s*>|$)"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    return html.remove(script);
}

} // namespace

QVReleaseNotesBrowser::QVReleaseNotesBrowser(QWidget *parent)
    : QTextBrowser(parent)
{
    setOpenLinks(false);
    setOpenExternalLinks(false);
    setAccessibleName(tr("Release notes"));
}

void QVReleaseNotesBrowser::setReleaseNotes(const QString &html)
{
    setHtml(withoutScripts(html));
}

QVariant QVReleaseNotesBrowser::loadResource(int type, const QUrl &name)
{
    Q_UNUSED(type);
    if (name.scheme().compare(QLatin1String("data"), Qt::CaseInsensitive) == 0)
        return dataUrlContents(name);
    return {};
}
