#include "QVActionsPreferencesPage.h"

#include "QVCustomControlCollectionView.h"
#include "QVCustomControlEditor.h"
#include "QVCustomControlManager.h"
#include "QVShadowedTextField.h"
#include "QVStaticBorderGradientButton.h"
#include "QVTintedButton.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace
{

constexpr int barHeight = 42; // the list's container is its content and this bar
constexpr int barMargin = 10;
constexpr int buttonWidth = 26;
constexpr int buttonHeight = 22;
constexpr int messageMilliseconds = 10000;
const QColor addButtonTint = QColor::fromRgbF(0.85f, 0.92f, 1.0f);

} // namespace

QVActionsPreferencesPage::QVActionsPreferencesPage(
    QVCustomControlManager &manager, std::function<void()> beep, QWidget *parent)
    : QWidget(parent)
    , m_container(new QWidget(this))
    , m_scrollArea(new QScrollArea(m_container))
    , m_collectionView(new QVCustomControlCollectionView)
{
    setObjectName(QStringLiteral("Actions"));
    setAccessibleName(tr("Actions"));

    m_scrollArea->setObjectName(QStringLiteral("scrollArea"));
    m_scrollArea->setAccessibleName(tr("Custom controls list"));
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollArea->setWidgetResizable(false);
    m_scrollArea->setWidget(m_collectionView);
    m_scrollArea->viewport()->installEventFilter(this);
    m_scrollArea->verticalScrollBar()->setAccessibleName(tr("Scroll custom controls"));

    m_container->setObjectName(QStringLiteral("resizableContainerView"));
    m_container->setAccessibleName(tr("Custom controls editor"));
    auto *containerLayout = new QVBoxLayout(m_container);
    containerLayout->setContentsMargins(0, 0, 0, 0);
    containerLayout->setSpacing(0);
    containerLayout->addWidget(m_scrollArea, 1);
    // A hairline between the list and its bar, counted in the bar's height.
    auto *separator = new QFrame(m_container);
    separator->setObjectName(QStringLiteral("separator"));
    separator->setAccessibleName(tr("Separator"));
    separator->setFrameShape(QFrame::HLine);
    separator->setFrameShadow(QFrame::Plain);
    separator->setForegroundRole(QPalette::Mid);
    separator->setFixedHeight(1);
    containerLayout->addWidget(separator);
    containerLayout->addWidget(newButtonBar());
    m_collectionView->setResizableContainerView(m_container);

    auto *layout = new QVBoxLayout(this);
    // The list reaches down to the window's bottom edge.
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_container);
    layout->addStretch(0);

    m_editor = new QVCustomControlEditor(manager, *m_collectionView, std::move(beep), this);
    m_editor->setDeleteButton(m_deleteButton);
    connect(m_addButton, &QAbstractButton::clicked, m_editor, &QVCustomControlEditor::addControl);
    connect(m_deleteButton, &QAbstractButton::clicked, m_editor, &QVCustomControlEditor::deleteSelectedControls);
    connect(m_editor, &QVCustomControlEditor::controlsEdited, this, &QVActionsPreferencesPage::controlsEdited);
    connect(m_editor, &QVCustomControlEditor::controlsEdited, this, &QVActionsPreferencesPage::updateAddButtonTint);
    connect(
        m_collectionView, &QVCustomControlCollectionView::hotKeyRefused, this, &QVActionsPreferencesPage::showMessage);
    m_messageTimer.setSingleShot(true);
    connect(&m_messageTimer, &QTimer::timeout, m_messageLine, &QLabel::clear);

    m_collectionView->tileConfigurationViews(true, false);
    updateAddButtonTint();
}

QVActionsPreferencesPage::~QVActionsPreferencesPage()
{
    // The editor goes first, while the list it keeps the rows of is still there.
    delete m_editor;
}

QWidget *QVActionsPreferencesPage::newButtonBar()
{
    auto *bar = new QWidget(m_container);
    bar->setObjectName(QStringLiteral("buttonBar"));
    bar->setAccessibleName(tr("Custom controls buttons"));
    bar->setFixedHeight(barHeight - 1);

    m_addButton = new QVTintedButton(QStringLiteral("+"), bar);
    m_addButton->setObjectName(QStringLiteral("addButton"));
    m_addButton->setAccessibleName(tr("Add Control"));
    m_addButton->setToolTip(tr("Add a control below the selection"));
    m_addButton->setFixedSize(buttonWidth, buttonHeight);

    auto *deleteButton = new QVStaticBorderGradientButton(bar);
    deleteButton->setText(QString(QChar(0x2212)));
    deleteButton->setObjectName(QStringLiteral("deleteButton"));
    deleteButton->setAccessibleName(tr("Delete Selected Controls"));
    deleteButton->setToolTip(tr("Delete the selected controls"));
    deleteButton->setFixedSize(buttonWidth, buttonHeight);
    m_deleteButton = deleteButton;

    // Engraved into the bar, as labels on a window's bottom bar are.
    m_messageLine = new QVShadowedTextField(bar);
    m_messageLine->setObjectName(QStringLiteral("messageLine"));
    m_messageLine->setAccessibleName(tr("Editor message"));
    m_messageLine->setTag(1);
    m_messageLine->setTextFormat(Qt::PlainText);
    m_messageLine->setForegroundRole(QPalette::PlaceholderText);

    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(barMargin, 0, barMargin, 0);
    layout->setSpacing(0);
    layout->addWidget(m_addButton);
    layout->addWidget(deleteButton);
    layout->addSpacing(barMargin);
    layout->addWidget(m_messageLine, 1);
    return bar;
}

void QVActionsPreferencesPage::setUpdatePreferencesWindowFrame(std::function<void()> update)
{
    m_collectionView->setUpdatePreferencesWindowFrame(std::move(update));
}

void QVActionsPreferencesPage::showMessage(const QString &message)
{
    m_messageLine->setText(message);
    m_messageTimer.start(messageMilliseconds);
}

void QVActionsPreferencesPage::updateAddButtonTint()
{
    // An empty list points at the button that fills it.
    const bool empty = m_editor->controlConfigurationViewsInCollectionView(*m_collectionView).isEmpty();
    m_addButton->setTintColor(empty ? std::optional<QColor>(addButtonTint) : std::nullopt);
}

bool QVActionsPreferencesPage::eventFilter(QObject *watched, QEvent *event)
{
    // The rows follow the width of the list's visible part.
    if (watched == m_scrollArea->viewport() && event->type() == QEvent::Resize
        && m_collectionView->width() != m_scrollArea->viewport()->width())
        m_collectionView->tileConfigurationViews(true, false);
    return QWidget::eventFilter(watched, event);
}
