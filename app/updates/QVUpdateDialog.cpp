#include "QVUpdateDialog.h"

#include "QVReleaseNotesBrowser.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLayout>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

QVUpdateDialog::QVUpdateDialog(QWidget *parent)
    : QDialog(parent)
    , m_headline(new QLabel(this))
    , m_detail(new QLabel(this))
    , m_progress(new QProgressBar(this))
    , m_releaseNotes(new QVReleaseNotesBrowser(this))
    , m_buttons(new QDialogButtonBox(this))
{
    setWindowTitle(tr("Software Update"));
    setAccessibleName(tr("Software Update"));

    QFont bold = m_headline->font();
    bold.setBold(true);
    m_headline->setFont(bold);
    m_headline->setAccessibleName(tr("Update status"));
    m_detail->setWordWrap(true);
    m_detail->setAccessibleName(tr("Update details"));
    m_progress->setRange(0, 0);
    m_progress->setTextVisible(false);
    m_progress->setAccessibleName(tr("Checking progress"));
    m_releaseNotes->setMinimumSize(480, 220);
    // Links in the notes open in the browser when clicked; nothing is loaded here.
    connect(m_releaseNotes, &QTextBrowser::anchorClicked, this, [](const QUrl &url) {
        if (url.scheme() == QLatin1String("https") || url.scheme() == QLatin1String("http"))
            QDesktopServices::openUrl(url);
    });
    m_buttons->setAccessibleName(tr("Update actions"));

    m_cancelButton = addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    m_okButton = addButton(tr("OK"), QDialogButtonBox::AcceptRole);
    m_skipButton = addButton(tr("Skip This Version"), QDialogButtonBox::DestructiveRole);
    m_remindButton = addButton(tr("Remind Me Later"), QDialogButtonBox::RejectRole);
    m_downloadButton = addButton(tr("Download Page"), QDialogButtonBox::AcceptRole);
    connect(m_cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::close);
    connect(m_remindButton, &QPushButton::clicked, this, &QDialog::close);
    connect(m_skipButton, &QPushButton::clicked, this, [this] {
        Q_EMIT versionSkipped(m_offeredVersion);
        close();
    });
    connect(m_downloadButton, &QPushButton::clicked, this, &QVUpdateDialog::openDownloadPage);

    auto *icon = new QLabel(this);
    icon->setPixmap(QApplication::windowIcon().pixmap(64, 64));
    icon->setAlignment(Qt::AlignTop);
    icon->setAccessibleName(tr("Application icon"));
    icon->setVisible(!icon->pixmap().isNull());
    auto *text = new QVBoxLayout;
    text->addWidget(m_headline);
    text->addWidget(m_detail);
    text->addWidget(m_progress);
    text->addWidget(m_releaseNotes, 1);
    text->addWidget(m_buttons);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(20, 20, 20, 16);
    layout->setSpacing(16);
    layout->addWidget(icon);
    layout->addLayout(text, 1);
    setMinimumWidth(420);
    showChecking();
}

QPushButton *QVUpdateDialog::addButton(const QString &text, int role)
{
    QPushButton *button = m_buttons->addButton(text, QDialogButtonBox::ButtonRole(role));
    button->setAccessibleName(text);
    button->setAutoDefault(false);
    return button;
}

QPushButton *QVUpdateDialog::button(const QString &accessibleName) const
{
    for (QAbstractButton *candidate : m_buttons->buttons())
        if (candidate->accessibleName() == accessibleName)
            return qobject_cast<QPushButton *>(candidate);
    return nullptr;
}

void QVUpdateDialog::enterState(State state, const QString &headline, const QString &detail)
{
    m_state = state;
    m_headline->setText(headline);
    m_detail->setText(detail);
    m_detail->setVisible(!detail.isEmpty());
    m_progress->setVisible(state == State::Checking);
    m_releaseNotes->setVisible(state == State::UpdateAvailable);
    m_cancelButton->setVisible(state == State::Checking);
    m_okButton->setVisible(state == State::UpToDate || state == State::Error);
    for (QPushButton *button : { m_downloadButton, m_skipButton, m_remindButton })
        button->setVisible(state == State::UpdateAvailable);
    QPushButton *defaultButton = state == State::Checking ? m_cancelButton
        : state == State::UpdateAvailable                 ? m_downloadButton
                                                          : m_okButton;
    defaultButton->setDefault(true);
    defaultButton->setFocus();
    // The children just shown or hidden count only once the layout has been worked out again;
    // adjustSize() would hold the window to two thirds of a small screen and cut off the notes.
    layout()->activate();
    resize(sizeHint());
}

void QVUpdateDialog::showChecking()
{
    enterState(State::Checking, tr("Checking for updates…"), {});
}

void QVUpdateDialog::showUpToDate(const QString &applicationName, const QString &version)
{
    enterState(State::UpToDate, tr("%1 is up to date").arg(applicationName),
        tr("%1 %2 is the newest version available.").arg(applicationName, version));
}

void QVUpdateDialog::showUpdateAvailable(
    const QString &applicationName, const QString &currentVersion, const QVAppcastItem &item, const QUrl &downloadPage)
{
    m_offeredVersion = item.versionString;
    m_downloadPage = downloadPage;
    m_releaseNotes->setReleaseNotes(item.itemDescription);
    enterState(State::UpdateAvailable, tr("A new version of %1 is available!").arg(applicationName),
        tr("%1 %2 is now available—you have %3.").arg(applicationName, item.displayVersionString, currentVersion));
}

void QVUpdateDialog::showError(const QString &message)
{
    enterState(State::Error, tr("The update check failed"), message);
}

// Whichever way the window goes while a check runs (Cancel, Escape, the title bar), the check ends.
void QVUpdateDialog::done(int result)
{
    if (m_state == State::Checking)
        Q_EMIT checkCancelled();
    QDialog::done(result);
}

void QVUpdateDialog::openDownloadPage()
{
    QDesktopServices::openUrl(m_downloadPage);
    close();
}
