#pragma once

#include <QTextBrowser>

// Shows a feed's HTML release notes and loads nothing on their behalf: no remote
// or local images, style sheets or pages, only what data: addresses carry inline.
// A clicked link is only reported (anchorClicked).
class QVReleaseNotesBrowser final : public QTextBrowser
{
    Q_OBJECT

public:
    explicit QVReleaseNotesBrowser(QWidget *parent = nullptr);

    void setReleaseNotes(const QString &html);
    QVariant loadResource(int type, const QUrl &name) override;
};
