#include "QVAboutDialog.h"

#include "QVResourcePaths.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFile>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{

constexpr int iconSize = 96;
constexpr int dialogMargin = 20;
constexpr int textWidth = 340;
const QString productPageAddress = QStringLiteral("https://corvane.org/");

QIcon applicationIcon()
{
    const QString bundled = QVIconResourcePath(QStringLiteral("corvane"));
    QIcon icon = QIcon::fromTheme(QStringLiteral("corvane"));
    if (icon.isNull() && QFile::exists(bundled))
        icon = QIcon(bundled);
    if (icon.isNull())
        icon = QGuiApplication::windowIcon();
    return icon;
}

} // namespace

QVAboutDialog::QVAboutDialog(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("aboutDialog"));
    setWindowTitle(tr("About Corvane"));
    setAccessibleName(windowTitle());

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(dialogMargin, dialogMargin, dialogMargin, dialogMargin);
    layout->setSpacing(8);

    const QIcon icon = applicationIcon();
    if (!icon.isNull()) {
        auto *iconView = new QLabel(this);
        iconView->setObjectName(QStringLiteral("iconView"));
        iconView->setAccessibleName(tr("Corvane icon"));
        iconView->setPixmap(icon.pixmap(iconSize, iconSize));
        iconView->setAlignment(Qt::AlignCenter);
        layout->addWidget(iconView);
    }

    QLabel *name = newTextLabel(QStringLiteral("nameView"), tr("Corvane"));
    QFont nameFont = name->font();
    nameFont.setPointSizeF(nameFont.pointSizeF() * 1.6);
    nameFont.setBold(true);
    name->setFont(nameFont);
    layout->addWidget(name);
    layout->addWidget(
        newTextLabel(QStringLiteral("versionView"), tr("Version %1").arg(QCoreApplication::applicationVersion())));
    layout->addSpacing(6);
    layout->addWidget(newTextLabel(QStringLiteral("descriptionView"),
        tr("Drives the mouse pointer from the keyboard with hot keys of your own.")));
    QLabel *link = newTextLabel(
        QStringLiteral("linkView"), QStringLiteral("<a href=\"%1\">%2</a>").arg(productPageAddress, tr("corvane.org")));
    link->setAccessibleName(tr("Corvane's web site"));
    link->setTextFormat(Qt::RichText);
    link->setOpenExternalLinks(true);
    link->setTextInteractionFlags(Qt::TextBrowserInteraction);
    link->setToolTip(productPageAddress);
    layout->addWidget(link);
    layout->addSpacing(6);
    QLabel *copyright = newTextLabel(
        QStringLiteral("copyrightView"), tr("© 2026 The Corvane developers\nDistributed under the MIT licence."));
    copyright->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(copyright);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->setObjectName(QStringLiteral("buttons"));
    buttons->setAccessibleName(tr("Buttons"));
    buttons->setCenterButtons(true);
    buttons->button(QDialogButtonBox::Close)->setAccessibleName(tr("Close"));
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addSpacing(6);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

QLabel *QVAboutDialog::newTextLabel(const QString &objectName, const QString &text)
{
    auto *label = new QLabel(text, this);
    label->setObjectName(objectName);
    label->setAccessibleName(text);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setFixedWidth(textWidth);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

void QVAboutDialog::showAbout()
{
    show();
    raise();
    activateWindow();
}
