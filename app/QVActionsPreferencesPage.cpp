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
{
    setObjectName(QStringLiteral("Actions"));
    setAccessibleName(tr("Actions"));

    auto *contentView = new QWidget;
    contentView->setObjectName(QStringLiteral("contentView"));
    contentView->setAccessibleName(tr("Custom controls list"));
    auto *placeholderView = new QLabel(tr("Your custom controls will be listed here."), contentView);
    placeholderView->setObjectName(QStringLiteral("placeholderView"));
    placeholderView->setAccessibleName(placeholderView->text());
    placeholderView->setAlignment(Qt::AlignCenter);
    placeholderView->setWordWrap(true);
    placeholderView->setForegroundRole(QPalette::PlaceholderText);
    auto *contentLayout = new QVBoxLayout(contentView);
    contentLayout->setContentsMargins(contentMargin, contentMargin, contentMargin, contentMargin);
    contentLayout->addWidget(placeholderView);
    contentLayout->addStretch(1);

    auto *collectionView = new QScrollArea(this);
    collectionView->setObjectName(QStringLiteral("collectionView"));
    collectionView->setAccessibleName(tr("Custom controls"));
    collectionView->setWidgetResizable(true);
    collectionView->setFrameShape(QFrame::NoFrame);
    collectionView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    collectionView->setWidget(contentView);

    auto *layout = new QVBoxLayout(this);
    // The list reaches down to the window's bottom edge.
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(collectionView);
}

QSize QVActionsPreferencesPage::sizeHint() const
{
    return { QWidget::sizeHint().width(), preferredHeight };
}
