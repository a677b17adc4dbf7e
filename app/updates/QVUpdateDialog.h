#pragma once

#include "QVAppcastItem.h"

#include <QDialog>
#include <QUrl>

class QDialogButtonBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QVReleaseNotesBrowser;

// The "Software Update" window: progress while a check runs, then its verdict.
class QVUpdateDialog final : public QDialog
{
    Q_OBJECT

public:
    enum class State { Checking, UpToDate, UpdateAvailable, Error };

    explicit QVUpdateDialog(QWidget *parent = nullptr);

    State state() const { return m_state; }

    void showChecking();
    void showUpToDate(const QString &applicationName, const QString &version);
    void showUpdateAvailable(const QString &applicationName, const QString &currentVersion, const QVAppcastItem &item,
        const QUrl &downloadPage);
    void showError(const QString &message);

    QLabel *headline() const { return m_headline; }
    QLabel *detail() const { return m_detail; }
    QVReleaseNotesBrowser *releaseNotes() const { return m_releaseNotes; }
    QPushButton *button(const QString &accessibleName) const;

    void done(int result) override;

Q_SIGNALS:
    // The user cancelled the running check.
    void checkCancelled();
    // "Skip This Version" for the item's version (not its display version).
    void versionSkipped(const QString &versionString);

private:
    QPushButton *addButton(const QString &text, int role);
    void enterState(State state, const QString &headline, const QString &detail);
    void openDownloadPage();

    State m_state = State::Checking;
    QLabel *m_headline;
    QLabel *m_detail;
    QProgressBar *m_progress;
    QVReleaseNotesBrowser *m_releaseNotes;
    QDialogButtonBox *m_buttons;
    QPushButton *m_cancelButton;
    QPushButton *m_okButton;
    QPushButton *m_downloadButton;
    QPushButton *m_skipButton;
    QPushButton *m_remindButton;
    QString m_offeredVersion;
    QUrl m_downloadPage;
};
