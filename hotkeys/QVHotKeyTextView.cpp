#include "QVHotKeyTextView.h"

#include "QVDelayedPerformer.h"
#include "QVEvent.h"
#include "QVHotKey.h"
#include "QVHotKeyClearButton.h"
#include "QVHotKeyRecordingRoute.h"
#include "QVKeyNames.h"
#include "QVModifierFlagBits.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QStyleOptionFrame>

namespace
{

constexpr double defaultFontSize = 12.0;
constexpr int textMargin = 2;
const QColor placeholderColor = QColor::fromRgbF(0.6, 0.6, 0.6);

QVHotKeyRecordingRoute *route()
{
    return QVHotKeyRecordingRoute::shared();
}

bool startsRecording(const QKeyEvent &event)
{
    if (event.isAutoRepeat() || (event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    return event.key() == Qt::Key_Space || event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

} // namespace

QVHotKeyTextView::QVHotKeyTextView(QWidget *parent)
    : QLineEdit(parent)
{
    setReadOnly(true);
    setAcceptDrops(false);
    setDragEnabled(false);
    setContextMenuPolicy(Qt::NoContextMenu);
    setAttribute(Qt::WA_InputMethodEnabled, false);
    setFocusPolicy(Qt::StrongFocus);
    setAlignment(Qt::AlignCenter);
    setAccessibleName(tr("Hot key"));
    m_timeOutTimer.setSingleShot(true);
    connect(&m_timeOutTimer, &QTimer::timeout, this, &QVHotKeyTextView::timeOutFirstResponder);
    // The selection is the whole text while recording and nothing otherwise,
    // whoever tries to change it (an assistive technology may).
    connect(this, &QLineEdit::selectionChanged, this, [this] {
        if (m_recording && selectedText() != text())
            selectAll();
        else if (!m_recording && hasSelectedText())
            deselect();
    });
    updateDisplay();
}

QVHotKeyTextView::~QVHotKeyTextView()
{
    cancelTimeOut();
    if (m_recording && route())
        route()->endRecording(this);
}

void QVHotKeyTextView::setHotKey(const QVHotKeyRef &hotKey)
{
    m_hotKey = hotKey;
    updateDisplay();
    if (m_hotKeyDelegate)
        m_hotKeyDelegate->didSetHotKey(m_hotKey, identifier());
}

QVHotKeyClearButton *QVHotKeyTextView::deleteButton() const
{
    return m_deleteButton;
}

void QVHotKeyTextView::setDeleteButton(QVHotKeyClearButton *button)
{
    if (m_deleteButton)
        disconnect(m_deleteButton, nullptr, this, nullptr);
    m_deleteButton = button;
    if (button)
        connect(button, &QAbstractButton::clicked, this, &QVHotKeyTextView::deleteHotKey);
    updateDeleteButton();
}

void QVHotKeyTextView::beginRecording()
{
    if (m_recording)
        return;
    if (!hasFocus())
        setFocus(Qt::MouseFocusReason);
    m_recording = true;
    m_readsApplicationKeys = !(route() && route()->beginRecording(this));
    scheduleTimeOut();
    updateDisplay();
    Q_EMIT recordingChanged(true);
}

void QVHotKeyTextView::keyDown(const QVEvent &event)
{
    using namespace QVModifierFlag;
    if (!m_recording || m_askingUser || event.type != QVEvent::KeyDown || event.isModifierKey)
        return;
    const quint64 flags = event.modifierFlags;
    if (!(flags & (Shift | Control | Option | Command)) && event.keyCode == QVKeyCode::Escape) {
        activelyResignFirstResponder();
        return;
    }
    if (!m_hotKeyDelegate) {
        activelyResignFirstResponder();
        return;
    }
    const QString identifier = this->identifier();
    const QVHotKeyRef candidate
        = QVHotKey::hotKeyWithIdentifer(identifier, QVReadableKeyString(event), event.keyCode, flags);
    if (!candidate->testForDelegate(m_hotKeyDelegate)) {
        refuse(*candidate);
        return;
    }
    // Without Shift, Control or Option the combination takes a key from every other program.
    if (!(flags & (Shift | Control | Option))) {
        const QPointer<QVHotKeyTextView> self(this);
        const bool confirmed = confirmRiskyHotKey(candidate->visualRepresentation());
        if (!self)
            return;
        if (!confirmed || !m_hotKeyDelegate) {
            activelyResignFirstResponder();
            return;
        }
    }
    if (m_hotKeyDelegate->shouldSetHotKey(candidate, identifier))
        setHotKey(candidate);
    activelyResignFirstResponder();
}

void QVHotKeyTextView::deleteHotKey()
{
    // Let go at once, even if the delegate then keeps the hot key.
    if (m_hotKey)
        m_hotKey->unregister();
    if (m_hotKeyDelegate && m_hotKeyDelegate->shouldSetHotKey(nullptr, identifier()))
        setHotKey(nullptr);
    activelyResignFirstResponder();
}

void QVHotKeyTextView::activelyResignFirstResponder()
{
    if (!m_recording)
        return;
    m_recording = false;
    m_askingUser = false;
    m_readsApplicationKeys = false;
    cancelTimeOut();
    if (route())
        route()->endRecording(this);
    updateDisplay();
    Q_EMIT recordingChanged(false);
}

void QVHotKeyTextView::timeOutFirstResponder()
{
    // An open alert ends the recording itself once answered.
    if (!m_askingUser)
        activelyResignFirstResponder();
}

void QVHotKeyTextView::setVisible(bool visible)
{
    QLineEdit::setVisible(visible);
    if (m_deleteButton)
        m_deleteButton->setVisible(visible);
}

bool QVHotKeyTextView::confirmRiskyHotKey(const QString &readableText)
{
    // The alert needs the keyboard; whatever the answer, the recording ends after it.
    if (route())
        route()->releaseKeyboard();
    m_askingUser = true;
    QWidget *owner = window();
    owner->raise();
    owner->activateWindow();
    const QPointer<QVHotKeyTextView> self(this);
    const QPointer<QMessageBox> alert = new QMessageBox(owner);
    alert->setIcon(QMessageBox::Warning);
    alert->setWindowTitle(tr("Use “%1”?").arg(readableText));
    alert->setText(alert->windowTitle());
    alert->setInformativeText(tr("Some applications might not respond properly to your input with the key "
                                 "combination “%1” being reserved as a hot key.")
                                  .arg(readableText));
    QPushButton *use = alert->addButton(tr("Use “%1”").arg(readableText), QMessageBox::AcceptRole);
    alert->addButton(tr("Cancel"), QMessageBox::RejectRole);
    alert->setDefaultButton(use);
    alert->setWindowModality(Qt::ApplicationModal);
    alert->exec();
    const bool confirmed = alert && alert->clickedButton() == use;
    delete alert;
    if (!self)
        return false;
    m_askingUser = false;
    // Without a window manager nothing gives the keyboard back to the window.
    window()->activateWindow();
    return confirmed;
}

void QVHotKeyTextView::refuse(const QVHotKey &candidate)
{
    beep();
    const QString text = candidate.visualRepresentation();
    const QString holder = m_hotKeyDelegate->titleOfControlHoldingHotKey(candidate);
    Q_EMIT recordingRefused(holder.isNull() ? tr("“%1” is held by another program.").arg(text)
                                            : tr("“%1” is used by “%2”.").arg(text, holder));
}

void QVHotKeyTextView::beep()
{
    if (route())
        route()->beep();
    else
        QApplication::beep();
}

QString QVHotKeyTextView::identifier()
{
    return m_hotKeyDelegate ? m_hotKeyDelegate->identifierForHotKeyTextView(this) : QString();
}

void QVHotKeyTextView::showText(const QString &text, bool placeholder)
{
    m_placeholderShown = placeholder;
    setText(text);
    QFont textFont = QApplication::font(this);
    const std::optional<double> size
        = m_hotKeyDelegate ? m_hotKeyDelegate->fontSizeForHotKeyTextView(this) : std::nullopt;
    textFont.setPixelSize(qRound(size.value_or(defaultFontSize)));
    if (textFont != font())
        setFont(textFont);
}

void QVHotKeyTextView::updateDisplay()
{
    if (m_hotKey)
        showText(m_hotKey->visualRepresentation(), false);
    else if (m_recording)
        showText(QStringLiteral(" "), true);
    else
        showText(tr("No Shortcut"), true);
    if (m_recording)
        selectAll();
    else
        deselect();
    updateDeleteButton();
    update();
}

void QVHotKeyTextView::updateDeleteButton()
{
    if (m_deleteButton)
        m_deleteButton->setEnabled(m_hotKey || m_recording);
}

void QVHotKeyTextView::scheduleTimeOut()
{
    cancelTimeOut();
    if (m_timeOutPerformer)
        m_timeOutPerformer->performAfterDelay(recordingTimeOut, [this] { timeOutFirstResponder(); });
    else
        m_timeOutTimer.start(qRound(recordingTimeOut * 1000));
}

void QVHotKeyTextView::cancelTimeOut()
{
    if (m_timeOutPerformer)
        m_timeOutPerformer->cancelPreviousPerformRequests();
    m_timeOutTimer.stop();
}

bool QVHotKeyTextView::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        // Recording: every combination is the field's, none triggers a shortcut.
        // Idle: the field claims none, not even the copy keys of a line edit.
        if (m_recording)
            event->accept();
        return m_recording;
    case QEvent::KeyPress:
        // Before Tab can move the focus.
        if (m_recording) {
            keyPressEvent(static_cast<QKeyEvent *>(event));
            return true;
        }
        break;
    default: break;
    }
    return QLineEdit::event(event);
}

void QVHotKeyTextView::keyPressEvent(QKeyEvent *event)
{
    if (m_recording) {
        event->accept();
        // With the keyboard taken, keys come from the platform; one that Qt still
        // delivers was pressed before.
        if (m_readsApplicationKeys)
            keyDown(route() ? route()->keyDownForKeyEvent(*event)
                            : QVHotKeyRecordingRoute::keyDownForKeyEventWithoutPlatform(*event));
        return;
    }
    // Recording starts when the key goes up: taking the keyboard while it is still
    // held would record its repeats.
    if (startsRecording(*event)) {
        m_startKey = event->key();
        event->accept();
        return;
    }
    event->ignore();
}

void QVHotKeyTextView::keyReleaseEvent(QKeyEvent *event)
{
    if (!m_recording && !event->isAutoRepeat() && m_startKey && event->key() == m_startKey) {
        m_startKey = 0;
        event->accept();
        beginRecording();
        return;
    }
    event->ignore();
}

void QVHotKeyTextView::mousePressEvent(QMouseEvent *event)
{
    event->accept();
    if (event->button() == Qt::LeftButton)
        beginRecording();
}

void QVHotKeyTextView::mouseMoveEvent(QMouseEvent *event)
{
    event->accept();
}

void QVHotKeyTextView::mouseReleaseEvent(QMouseEvent *event)
{
    event->accept();
}

void QVHotKeyTextView::mouseDoubleClickEvent(QMouseEvent *event)
{
    mousePressEvent(event);
}

void QVHotKeyTextView::wheelEvent(QWheelEvent *event)
{
    // Scrolling over the field scrolls whatever encloses it.
    event->ignore();
}

void QVHotKeyTextView::focusInEvent(QFocusEvent *event)
{
    QLineEdit::focusInEvent(event);
    // Focus alone does not record (a line edit would select its text on Tab).
    if (!m_recording)
        deselect();
    update();
}

void QVHotKeyTextView::focusOutEvent(QFocusEvent *event)
{
    m_startKey = 0;
    QLineEdit::focusOutEvent(event);
    // With the keyboard taken the X server moves the input focus away from the
    // window, and Qt calls that deactivation; clicks elsewhere come through the route.
    const bool grabDeactivation = event->reason() == Qt::ActiveWindowFocusReason && !m_readsApplicationKeys;
    if (m_recording && !m_askingUser && !grabDeactivation)
        activelyResignFirstResponder();
    else if (m_recording)
        selectAll();
    update();
}

void QVHotKeyTextView::showEvent(QShowEvent *event)
{
    QLineEdit::showEvent(event);
    // The text follows the setting for the sides of modifier keys.
    updateDisplay();
}

void QVHotKeyTextView::hideEvent(QHideEvent *event)
{
    QLineEdit::hideEvent(event);
    if (!m_askingUser)
        activelyResignFirstResponder();
}

void QVHotKeyTextView::changeEvent(QEvent *event)
{
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::ActivationChange)
        update();
}

void QVHotKeyTextView::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event);
    QPainter painter(this);
    QStyleOptionFrame panel;
    initStyleOption(&panel);
    // A recording field is filled with the selection colour, greyed while another
    // window has the keyboard.
    const bool keyboardHere = isActiveWindow() || (m_recording && !m_readsApplicationKeys && !m_askingUser);
    QColor background = palette().color(QPalette::Base);
    QColor textColor = palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::Text);
    if (m_recording) {
        background = palette().color(keyboardHere ? QPalette::Highlight : QPalette::Midlight);
        if (keyboardHere)
            textColor = palette().color(QPalette::Active, QPalette::HighlightedText);
    }
    if (m_placeholderShown)
        textColor = placeholderColor;
    panel.palette.setColor(QPalette::Base, background);
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &panel, &painter, this);
    const QRect contents
        = style()->subElementRect(QStyle::SE_LineEditContents, &panel, this).adjusted(textMargin, 0, -textMargin, 0);
    painter.setFont(font());
    painter.setPen(textColor);
    painter.drawText(contents, Qt::AlignCenter, fontMetrics().elidedText(text(), Qt::ElideMiddle, contents.width()));
}
