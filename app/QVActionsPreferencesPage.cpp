#include "QVActionsPreferencesPage.h"

#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

namespace
{

// Room for about half a dozen controls before the list scrolls.
constexpr int preferredHeight = 360;
constexpr int contentMargin = 20;

} // namespace

QVActionsPreferencesPage::QVActionsPreferencesPage(QWidget *parent)
    : QWidget(parent)
    , m_collectionView(new QScrollArea(this))
    , m_contentView(new QWidget)
    , m_placeholderView(new QLabel(m_contentView))
{
    setObjectName(QStringLiteral("Actions"));
    setAccessibleName(tr("Actions"));

    m_placeholderView->setObjectName(QStringLiteral("placeholderView"));
    m_placeholderView->setText(tr("Your custom controls will be listed here."));
    m_placeholderView->setAccessibleName(m_placeholderView->text());
    m_placeholderView->setAlignment(Qt::AlignCenter);
    m_placeholderView->setWordWrap(true);
    m_placeholderView->setForegroundRole(QPalette::PlaceholderText);

    m_contentView->setObjectName(QStringLiteral("contentView"));
    m_contentView->setAccessibleName(tr("Custom controls list"));
    auto *contentLayout = new QVBoxLayout(m_contentView);
    contentLayout->setContentsMargins(contentMargin, contentMargin, contentMargin, contentMargin);
    contentLayout->addWidget(m_placeholderView);
    contentLayout->addStretch(1);

    m_collectionView->setObjectName(QStringLiteral("collectionView"));
    m_collectionView->setAccessibleName(tr("Custom controls"));
    m_collectionView->setWidgetResizable(true);
    m_collectionView->setFrameShape(QFrame::NoFrame);
    m_collectionView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_collectionView->setWidget(m_contentView);

    auto *layout = new QVBoxLayout(this);
    // The list reaches down to the window's bottom edge.
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_collectionView);
}

QSize QVActionsPreferencesPage::sizeHint() const
{
    return { QWidget::sizeHint().width(), preferredHeight };
}
