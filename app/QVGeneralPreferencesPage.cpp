#include "QVGeneralPreferencesPage.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QSignalBlocker>

namespace
{

constexpr int pageMargin = 20;

QLabel *newFieldLabel(const QString &text, QWidget *buddy, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setAccessibleName(text);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label->setBuddy(buddy);
    return label;
}

} // namespace

QVGeneralPreferencesPage::QVGeneralPreferencesPage(QWidget *parent)
    : QWidget(parent)
    , m_applicationModeSelector(new QComboBox(this))
    , m_loginItemSwitch(new QCheckBox(tr("Start at login"), this))
    , m_stealthModeSwitch(new QCheckBox(tr("Show settings at launch"), this))
    , m_facelessAplicationModeExplanationView(new QLabel(this))
{
    setObjectName(QStringLiteral("General"));
    setAccessibleName(tr("General"));

    m_applicationModeSelector->setObjectName(QStringLiteral("applicationModeSelector"));
    m_applicationModeSelector->setAccessibleName(tr("Show Corvane as"));
    m_applicationModeSelector->addItem(tr("Window in the task bar"), 0);
    m_applicationModeSelector->addItem(tr("Icon in the system tray"), 1);
    m_applicationModeSelector->addItem(tr("In the background (no window, no icon)"), 2);
    m_applicationModeSelector->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_reportedModeIndex = m_applicationModeSelector->currentIndex();

    m_facelessAplicationModeExplanationView->setObjectName(QStringLiteral("facelessAplicationModeExplanationView"));
    m_facelessAplicationModeExplanationView->setText(
        tr("Corvane has neither a window nor an icon, and your hot keys keep working. To reach these settings, "
           "launch Corvane again, for example from the application menu."));
    m_facelessAplicationModeExplanationView->setAccessibleName(m_facelessAplicationModeExplanationView->text());
    m_facelessAplicationModeExplanationView->setWordWrap(true);
    m_facelessAplicationModeExplanationView->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_facelessAplicationModeExplanationView->setForegroundRole(QPalette::PlaceholderText);
    m_facelessAplicationModeExplanationView->hide();

    m_loginItemSwitch->setObjectName(QStringLiteral("loginItemSwitch"));
    m_loginItemSwitch->setAccessibleName(m_loginItemSwitch->text());
    m_stealthModeSwitch->setObjectName(QStringLiteral("stealthModeSwitch"));
    m_stealthModeSwitch->setAccessibleName(m_stealthModeSwitch->text());

    auto *layout = new QGridLayout(this);
    // The window adds the bottom margin when it fits its height to the page.
    layout->setContentsMargins(pageMargin, pageMargin, pageMargin, 0);
    layout->setColumnStretch(1, 1);
    layout->addWidget(newFieldLabel(tr("Show Corvane as:"), m_applicationModeSelector, this), 0, 0);
    layout->addWidget(m_applicationModeSelector, 0, 1, Qt::AlignLeft);
    layout->addWidget(m_facelessAplicationModeExplanationView, 1, 1);
    layout->setRowMinimumHeight(2, pageMargin / 2);
    layout->addWidget(newFieldLabel(tr("Start-up:"), m_loginItemSwitch, this), 3, 0);
    layout->addWidget(m_loginItemSwitch, 3, 1);
    layout->addWidget(m_stealthModeSwitch, 4, 1);
    layout->setRowStretch(5, 1);

    connect(
        m_applicationModeSelector, &QComboBox::activated, this, &QVGeneralPreferencesPage::applicationModeActivated);
    // clicked, not toggled: only the user's own changes are reported.
    connect(m_loginItemSwitch, &QCheckBox::clicked, this, [this] { Q_EMIT changeSetting(m_loginItemSwitch); });
    connect(m_stealthModeSwitch, &QCheckBox::clicked, this, [this] { Q_EMIT changeSetting(m_stealthModeSwitch); });
}

void QVGeneralPreferencesPage::setApplicationMode(qint64 tag)
{
    const int index = m_applicationModeSelector->findData(tag);
    const QSignalBlocker blocker(m_applicationModeSelector);
    m_applicationModeSelector->setCurrentIndex(index);
    m_reportedModeIndex = index;
}

void QVGeneralPreferencesPage::setExplanationVisible(bool visible)
{
    m_facelessAplicationModeExplanationView->setVisible(visible);
}

void QVGeneralPreferencesPage::applicationModeActivated(int index)
{
    if (index == m_reportedModeIndex)
        return;
    m_reportedModeIndex = index;
    Q_EMIT changeSetting(m_applicationModeSelector);
}
