#include "QVUpdatesPage.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

QVUpdatesPage::QVUpdatesPage(QWidget *parent)
    : QWidget(parent)
    , m_autoUpdateCheckingSwitch(new QCheckBox(tr("Check for updates automatically"), this))
    , m_statusTextField(new QLabel(this))
    , m_statusDateTextField(new QLabel(this))
    , m_checkNowButton(new QPushButton(tr("Check Now"), this))
    , m_productPageButton(new QPushButton(tr("Visit Product Page"), this))
{
    setAccessibleName(tr("Updates"));
    m_autoUpdateCheckingSwitch->setObjectName(QStringLiteral("autoUpdateCheckingSwitch"));
    m_autoUpdateCheckingSwitch->setAccessibleName(m_autoUpdateCheckingSwitch->text());
    m_statusTextField->setObjectName(QStringLiteral("statusTextField"));
    m_statusTextField->setAccessibleName(tr("Update status"));
    m_statusDateTextField->setObjectName(QStringLiteral("statusDateTextField"));
    m_statusDateTextField->setAccessibleName(tr("Last update check"));
    m_checkNowButton->setAccessibleName(m_checkNowButton->text());
    m_productPageButton->setAccessibleName(m_productPageButton->text());
    // The address is carried by the button; QVSparkleWrapper::visitProductPage opens it.
    m_productPageButton->setToolTip(QStringLiteral(CORVANE_PRODUCT_PAGE));
    for (QLabel *label : { m_statusTextField, m_statusDateTextField }) {
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        label->hide();
    }

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_checkNowButton);
    buttons->addStretch(1);
    buttons->addWidget(m_productPageButton);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 20, 20, 20);
    layout->addWidget(m_autoUpdateCheckingSwitch);
    layout->addSpacing(8);
    layout->addWidget(m_statusTextField);
    layout->addWidget(m_statusDateTextField);
    layout->addSpacing(8);
    layout->addLayout(buttons);
    layout->addStretch(1);
}

void QVUpdatesPage::setStatusLines(const QString &statusLine, const QString &dateLine)
{
    m_statusTextField->setText(statusLine);
    m_statusTextField->setVisible(!statusLine.isEmpty());
    m_statusDateTextField->setText(dateLine);
    m_statusDateTextField->setVisible(!dateLine.isEmpty());
}
