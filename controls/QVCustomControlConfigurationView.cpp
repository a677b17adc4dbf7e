#include "QVCustomControlConfigurationView.h"

#include "QVCustomControlCollectionView.h"
#include "QVCustomControlCollectionViewDelegate.h"
#include "QVCustomControlDirectionSelectorView.h"
#include "QVCustomControlIcon.h"
#include "QVCustomControlRowDrag.h"
#include "QVHotKey.h"
#include "QVHotKeyClearButton.h"
#include "QVHotKeyService.h"
#include "QVHotKeyTextView.h"
#include "QVStringExtensions.h"
#include "QVUserDefaults.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolButton>

namespace
{

constexpr qreal boxInsetX = 9.5;
constexpr qreal boxInsetY = 4.5;
constexpr qreal boxCornerRadius = 7;
constexpr qreal iconLeft = 10;
constexpr qreal iconBottom = 28;
constexpr QSizeF iconSize(22, 16);

QColor grey(qreal level, qreal alpha = 1)
{
    return QColor::fromRgbF(float(level), float(level), float(level), float(alpha));
}

const QLinearGradient &headerGradient()
{
    // Made once: every row draws the same band.
    static const QLinearGradient gradient = [] {
        // From the band's bottom edge up, in the band's own coordinates.
        QLinearGradient band(0, 1, 0, 0);
        band.setCoordinateMode(QGradient::ObjectMode);
        band.setColorAt(0, QColor::fromRgbF(0, 0, 0, 0));
        band.setColorAt(1, QColor::fromRgbF(0, 0, 0, 0.08f));
        return band;
    }();
    return gradient;
}

QPainterPath roundedBox(const QRectF &box)
{
    QPainterPath path;
    path.addRoundedRect(box, boxCornerRadius, boxCornerRadius);
    return path;
}

} // namespace

QVCustomControlConfigurationView::QVCustomControlConfigurationView(const QVCustomControlRef &control, QWidget *parent)
    : QWidget(parent)
    , m_control(control)
    , m_controls(*this)
{
    setObjectName(QStringLiteral("configurationView"));
    const QVCustomControlRowControls &c = m_controls;
    c.actionSelector->setCurrentIndex(c.actionSelector->findData(m_control->action()));
    c.hotKeyTextView->setHotKeyDelegate(m_control.get());
    c.hotKeyTextView->setHotKey(m_control->hotKey());
    connectControls();
    updateConfigurationView(m_control->action(), false);
}

void QVCustomControlConfigurationView::connectControls()
{
    const QVCustomControlRowControls &c = m_controls;
    const auto changeSettingOf = [this](QObject *sender) { return [this, sender] { changeSetting(sender); }; };
    connect(c.expandSwitch, &QToolButton::clicked, this, changeSettingOf(c.expandSwitch));
    connect(c.actionSelector, &QComboBox::activated, this, changeSettingOf(c.actionSelector));
    // A hot key recorded, refused or cleared: the list may need saving, the message line a word.
    connect(c.hotKeyTextView, &QVHotKeyTextView::recordingChanged, this, [this](bool recording) {
        if (!recording)
            controlDidChange();
    });
    connect(c.hotKeyClearButton, &QAbstractButton::clicked, this, &QVCustomControlConfigurationView::controlDidChange);
    connect(c.hotKeyTextView, &QVHotKeyTextView::recordingRefused, this, [this](const QString &message) {
        if (QVCustomControlCollectionView *list = collectionView())
            Q_EMIT list->hotKeyRefused(message);
    });
}

QWidget *QVCustomControlConfigurationView::makeDetailBox(qint64 action)
{
    const QVCustomControlRowControls &c = m_controls;
    const qsizetype made = c.detailBoxes().size();
    QWidget *box = m_controls.makeDetailBoxForAction(action);
    if (c.detailBoxes().size() == made)
        return box;
    const auto changeSettingOf = [this](QObject *sender) { return [this, sender] { changeSetting(sender); }; };
    for (QCheckBox *check : box->findChildren<QCheckBox *>())
        connect(check, &QCheckBox::clicked, this, changeSettingOf(check));
    for (QComboBox *selector : box->findChildren<QComboBox *>())
        connect(selector, &QComboBox::activated, this, changeSettingOf(selector));
    for (QLineEdit *field : box->findChildren<QLineEdit *>())
        connect(field, &QLineEdit::textEdited, this, &QVCustomControlConfigurationView::controlTextDidChange);
    auto *selector = qobject_cast<QVCustomControlDirectionSelectorView *>(box);
    if (!selector)
        selector = box->findChild<QVCustomControlDirectionSelectorView *>();
    if (selector)
        selector->setDelegate(this);
    box->setVisible(false);
    return box;
}

QVCustomControlCollectionView *QVCustomControlConfigurationView::collectionView() const
{
    for (QWidget *ancestor = parentWidget(); ancestor; ancestor = ancestor->parentWidget())
        if (auto *list = qobject_cast<QVCustomControlCollectionView *>(ancestor))
            return list;
    return nullptr;
}

void QVCustomControlConfigurationView::setSelected(bool selected)
{
    if (selected == m_selected)
        return;
    m_selected = selected;
    update();
    QAccessible::State changed;
    changed.selected = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}

void QVCustomControlConfigurationView::setMoveSortFrame(const QRectF &frame)
{
    const bool wasMoving = !m_moveSortFrame.isEmpty();
    m_moveSortFrame = frame;
    if (wasMoving != !frame.isEmpty())
        update(); // the outline darkens while dragged
}

void QVCustomControlConfigurationView::changeSetting(QObject *sender)
{
    const QVCustomControlRowControls &c = m_controls;
    if (sender == c.expandSwitch) {
        setCollapsedFromSwitch(QGuiApplication::keyboardModifiers() & Qt::AltModifier);
    } else if (sender == c.actionSelector) {
        m_control->setAction(c.actionSelector->currentData().toLongLong());
        updateConfigurationView(m_control->action(), true);
    } else if (sender == c.moveDeltaSelector) {
        m_control->setMoveDelta(c.moveDeltaSelector->currentData().toLongLong());
    } else if (sender == c.moveAccelerateSwitch) {
        m_control->setMoveAccelerate(c.moveAccelerateSwitch->isChecked());
    } else if (sender == c.moveConfinedToDisplaySwitch) {
        m_control->setConfinedToDisplay(c.moveConfinedToDisplaySwitch->isChecked());
    } else if (sender == c.moveToOtherDisplayRepositionSwitch) {
        m_control->setMoveToOtherDisplayReposition(c.moveToOtherDisplayRepositionSwitch->isChecked());
    } else if (sender == c.moveToOtherDisplayLoopSwitch) {
        m_control->setMoveToOtherDisplayLoop(c.moveToOtherDisplayLoopSwitch->isChecked());
    } else {
        return;
    }
    controlDidChange();
}

void QVCustomControlConfigurationView::setCollapsedFromSwitch(bool applyToEveryRow)
{
    const bool collapsed = !m_controls.expandSwitch->isChecked();
    QVCustomControlCollectionView *list = collectionView();
    if (applyToEveryRow && list) {
        const QList<QVCustomControlConfigurationView *> rows = list->configurationViews();
        if (rows.size() > 1) {
            for (QVCustomControlConfigurationView *row : rows) {
                if (row == this)
                    continue;
                row->m_control->setCollapsed(collapsed);
                row->m_controls.expandSwitch->setChecked(!collapsed);
                row->updateConfigurationView(row->m_control->action(), false);
            }
        }
    }
    m_control->setCollapsed(collapsed);
    updateConfigurationView(m_control->action(), true);
}

void QVCustomControlConfigurationView::updateConfigurationView(qint64 action, bool tileCollectionView)
{
    const QVCustomControlRowControls &c = m_controls;
    const bool takesHotKey = action >= 1;
    if (!takesHotKey && m_control->hotKey()) {
        m_control->hotKey()->unregister();
        m_control->setHotKey(nullptr);
        c.hotKeyTextView->setHotKey(nullptr);
    }
    const QVHotKeyService *service = m_control->hotKeyService();
    const bool recordable = takesHotKey && (!service || service->grantsHotKeys());
    c.hotKeyTextView->setVisible(recordable);
    c.hotKeyClearButton->setVisible(recordable);
    c.performCommandField->setVisible(takesHotKey && !recordable);
    if (takesHotKey && !recordable && c.performCommandField->text() != performCommand()) {
        c.performCommandField->setText(performCommand());
        c.performCommandField->setCursorPosition(0); // the program's name first, not the identifier's end
    }

    QWidget *detailBox = makeDetailBox(action);
    loadParameters(action);
    showDetailBox(m_control->collapsed() ? nullptr : detailBox);
    c.expandSwitch->setChecked(detailBox && !m_control->collapsed());
    c.expandSwitch->setVisible(detailBox);

    updateAccessibleNames();
    updateFrame();
    update();
    if (tileCollectionView) {
        if (QVCustomControlCollectionView *list = collectionView()) {
            list->tileConfigurationViews(true, true);
            list->scrollRectToVisible(geometry());
        }
    }
}

QString QVCustomControlConfigurationView::performCommand() const
{
    // The identifier, not the title: it stays the same however the control is edited.
    QString command = QStringLiteral("corvane");
    const QVUserDefaults *defaults = QVUserDefaults::standardUserDefaults();
    if (defaults && defaults->filePath() != QVUserDefaults::defaultFilePath())
        command += QStringLiteral(" --settings ") + QVShellQuoted(defaults->filePath());
    return command + QStringLiteral(" --perform ") + QVShellQuoted(m_control->uniqueIdentifier());
}

void QVCustomControlConfigurationView::loadParameters(qint64 action)
{
    const QVCustomControlRowControls &c = m_controls;
    switch (action) {
    case QVAction::Move:
        c.moveDirectionSelector->setDirection(m_control->moveDirection());
        QVCustomControlRowControls::selectDelta(*c.moveDeltaSelector, m_control->moveDelta());
        c.moveAccelerateSwitch->setChecked(m_control->moveAccelerate());
        c.moveConfinedToDisplaySwitch->setChecked(m_control->confinedToDisplay());
        break;
    case QVAction::MoveToEdgeOrCorner:
        c.moveToEdgeOrCornerPositionSelector->setDirection(m_control->moveToEdgeOrCornerPosition());
        break;
    case QVAction::MoveToOtherDisplay:
        c.moveToOtherDisplayDirectionSelector->setDirection(m_control->moveToOtherDisplayDirection());
        c.moveToOtherDisplayRepositionSwitch->setChecked(m_control->moveToOtherDisplayReposition());
        c.moveToOtherDisplayLoopSwitch->setChecked(m_control->moveToOtherDisplayLoop());
        break;
    case QVAction::Heading:
        if (c.headerTitleField->text() != m_control->title())
            c.headerTitleField->setText(m_control->title());
        break;
    default: break;
    }
}

void QVCustomControlConfigurationView::showDetailBox(QWidget *box)
{
    for (QWidget *candidate : m_controls.detailBoxes())
        candidate->setVisible(candidate == box);
}

void QVCustomControlConfigurationView::updateFrame()
{
    m_controls.layOut(width());
    int lowest = 0;
    for (QObject *object : children()) {
        const auto *child = qobject_cast<QWidget *>(object);
        if (child && child->isVisibleTo(this))
            lowest = qMax(lowest, child->geometry().bottom() + 1);
    }
    const int fitted = qMax(minimumHeight, lowest + bottomMargin);
    if (fitted != height())
        resize(width(), fitted);
}

void QVCustomControlConfigurationView::controlTextDidChange()
{
    const QString text = m_controls.headerTitleField->text();
    m_control->setTitle(text.trimmed().isEmpty() ? QString() : text);
    controlDidChange();
}

void QVCustomControlConfigurationView::directionSelectorViewDidChangeDirection(
    QVCustomControlDirectionSelectorView &selector)
{
    switch (m_control->action()) {
    case QVAction::MoveToEdgeOrCorner: m_control->setMoveToEdgeOrCornerPosition(selector.direction()); break;
    case QVAction::MoveToOtherDisplay: m_control->setMoveToOtherDisplayDirection(selector.direction()); break;
    case QVAction::Move: m_control->setMoveDirection(selector.direction()); break;
    default: return;
    }
    controlDidChange();
}

void QVCustomControlConfigurationView::controlDidChange()
{
    updateAccessibleNames();
    update(); // the icon shows the new parameters
    if (QVCustomControlCollectionView *list = collectionView())
        if (QVCustomControlCollectionViewDelegate *delegate = list->delegate())
            delegate->controlDidChange();
}

void QVCustomControlConfigurationView::updateAccessibleNames()
{
    const QString title = m_control->displayTitleWithSuffixes(nullptr);
    const QVCustomControlRowControls &c = m_controls;
    setAccessibleName(title);
    c.actionSelector->setAccessibleName(tr("Action of %1").arg(title));
    c.hotKeyTextView->setAccessibleName(tr("Hot key of %1").arg(title));
    c.hotKeyClearButton->setAccessibleName(tr("Clear hot key of %1").arg(title));
    c.performCommandField->setAccessibleName(tr("Command for %1").arg(title));
    c.expandSwitch->setAccessibleName(tr("Details of %1").arg(title));
    const auto name = [](QWidget *widget, const QString &text) {
        if (widget)
            widget->setAccessibleName(text);
    };
    name(c.moveDeltaSelector, tr("Step of %1").arg(title));
    name(c.moveDirectionSelector, tr("Direction of %1").arg(title));
    name(c.moveToEdgeOrCornerPositionSelector, tr("Position of %1").arg(title));
    name(c.moveToOtherDisplayDirectionSelector, tr("Display of %1").arg(title));
    for (QCheckBox *box : { c.moveAccelerateSwitch, c.moveConfinedToDisplaySwitch, c.moveToOtherDisplayRepositionSwitch,
             c.moveToOtherDisplayLoopSwitch })
        name(box, box ? tr("%1 (%2)").arg(box->text(), title) : QString());
    name(c.headerTitleField, tr("Title of the heading"));
}

void QVCustomControlConfigurationView::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(rect()).adjusted(boxInsetX, boxInsetY, -boxInsetX, -boxInsetY);
    const QPainterPath outline = roundedBox(box);
    if (!m_selected) {
        painter.fillPath(outline, Qt::white);
        painter.setPen(QPen(grey(m_moveSortFrame.isEmpty() ? 0.8 : 0.6), 1));
    } else {
        const QVCustomControlCollectionView *list = collectionView();
        const QColor selection
            = list && list->showsActiveSelection() ? palette().color(QPalette::Active, QPalette::Highlight) : grey(0.5);
        painter.fillPath(outline, selection);
        painter.fillPath(outline, grey(1, 0.9)); // a light tint of the selection colour
        painter.setPen(QPen(selection, 1));
    }
    painter.drawPath(outline);

    painter.save();
    painter.setClipPath(roundedBox(box.adjusted(0.5, 0.5, -0.5, -0.5)));
    const QRectF band(box.x(), box.y(), box.width(), QVCustomControlRowControls::headerHeight);
    painter.fillRect(band, headerGradient());
    if (box.height() > QVCustomControlRowControls::headerHeight + 0.1)
        painter.fillRect(QRectF(band.x(), band.bottom() - 1, band.width(), 1), QColor::fromRgbF(0, 0, 0, 0.07f));
    painter.restore();

    const QRectF iconRect(QPointF(box.x() + iconLeft, box.y() + iconBottom - iconSize.height()), iconSize);
    drawIconInRect(*m_control, painter, iconRect, m_selected);
}

void QVCustomControlConfigurationView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_controls.layOut(width());
}

bool QVCustomControlConfigurationView::isInOuterMargin(const QPoint &point) const
{
    return !rect()
                .adjusted(QVCustomControlCollectionView::rowMarginX, QVCustomControlCollectionView::rowMarginY,
                    -QVCustomControlCollectionView::rowMarginX, -QVCustomControlCollectionView::rowMarginY)
                .contains(point);
}

void QVCustomControlConfigurationView::mousePressEvent(QMouseEvent *event)
{
    QVCustomControlCollectionView *list = collectionView();
    if (!list || event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    if (isInOuterMargin(event->position().toPoint())) {
        // The margin between rows belongs to the list's background.
        list->selectConfigurationView(nullptr, Qt::NoModifier);
        list->setFocus(Qt::MouseFocusReason);
        return;
    }
    list->beginTrackingRow(*this, mapTo(list, event->position().toPoint()));
}

void QVCustomControlConfigurationView::mouseMoveEvent(QMouseEvent *event)
{
    QVCustomControlCollectionView *list = collectionView();
    if (list && list->rowDrag())
        list->rowDrag()->dragTo(event->globalPosition().toPoint());
}

void QVCustomControlConfigurationView::mouseReleaseEvent(QMouseEvent *event)
{
    QVCustomControlCollectionView *list = collectionView();
    if (list && list->rowDrag() && event->button() == Qt::LeftButton) {
        list->rowDrag()->finish(event->modifiers());
        list->endTrackingRow();
    }
}
