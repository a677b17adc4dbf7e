#include "QVHotKeyRecordingRoute.h"

#include "QVHotKeyTextView.h"
#include "QVLog.h"
#include "QVPlatform.h"

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>

namespace
{

QVHotKeyRecordingRoute *sharedRoute = nullptr;

bool isModifierKey(int key)
{
    switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Meta:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R:
    case Qt::Key_Mode_switch: return true;
    default: return false;
    }
}

} // namespace

QVHotKeyRecordingRoute::QVHotKeyRecordingRoute(QVPlatform &platform)
    : m_platform(platform)
{
}

QVHotKeyRecordingRoute::~QVHotKeyRecordingRoute()
{
    if (sharedRoute == this)
        sharedRoute = nullptr;
    if (m_field)
        m_field->activelyResignFirstResponder();
    releaseKeyboard();
}

QVHotKeyRecordingRoute *QVHotKeyRecordingRoute::shared()
{
    return sharedRoute;
}

void QVHotKeyRecordingRoute::setShared(QVHotKeyRecordingRoute *route)
{
    sharedRoute = route;
}

QVHotKeyTextView *QVHotKeyRecordingRoute::recordingField() const
{
    return m_field;
}

bool QVHotKeyRecordingRoute::routeEvent(const QVEventRef &event)
{
    // A control asked for from outside is no key: it acts even while a field records.
    if (!event || !event->performedControl.isEmpty())
        return false;
    if (event->type == QVEvent::SystemDefined && event->subtype == QVEvent::HotKeyReleased) {
        if (event->keyCode == m_hotKeyCodeDown)
            m_hotKeyCodeDown = 0;
        return false; // it still ends a repetition
    }
    QVHotKeyTextView *field = m_field;
    if (!field || !field->isRecording())
        return false;
    switch (event->type) {
    case QVEvent::KeyDown: deliverLater(*event); return true;
    case QVEvent::SystemDefined:
        // Without the keyboard, presses of Corvane's own hot keys still come here:
        // while a field records they are candidates and do not act.
        if (event->subtype != QVEvent::HotKeyPressed)
            return false;
        if (event->keyCode != m_hotKeyCodeDown) {
            m_hotKeyCodeDown = event->keyCode;
            QVEvent keyDown = *event;
            keyDown.type = QVEvent::KeyDown;
            keyDown.subtype = 0;
            keyDown.data1 = 0;
            keyDown.charactersIgnoringModifiers = m_platform.charactersIgnoringModifiers(event->keyCode);
            deliverLater(keyDown);
        }
        return true;
    case QVEvent::LeftMouseDown:
        // A click in the field's own window moves Qt's focus, which the field follows.
        if (clickIsOutsideField())
            field->activelyResignFirstResponder();
        return true;
    default: return false;
    }
}

bool QVHotKeyRecordingRoute::beginRecording(QVHotKeyTextView *field)
{
    if (m_field == field && m_keyboardTaken)
        return true;
    if (m_field && m_field != field)
        m_field->activelyResignFirstResponder();
    m_field = field;
    m_keyboardTaken = m_platform.takeKeyboard();
    if (!m_keyboardTaken)
        QVLog(QStringLiteral("another program holds the keyboard: the hot key field reads the window's key events"));
    return m_keyboardTaken;
}

void QVHotKeyRecordingRoute::endRecording(QVHotKeyTextView *field)
{
    if (m_field != field)
        return;
    releaseKeyboard();
    m_field = nullptr;
}

void QVHotKeyRecordingRoute::releaseKeyboard()
{
    if (!m_keyboardTaken)
        return;
    m_platform.releaseKeyboard();
    m_keyboardTaken = false;
}

void QVHotKeyRecordingRoute::beep()
{
    m_platform.beep();
}

QVEvent QVHotKeyRecordingRoute::keyDownForKeyEvent(const QKeyEvent &event) const
{
    QVEvent keyDown = keyDownForKeyEventWithoutPlatform(event);
    keyDown.modifierFlags = m_platform.modifierFlagsForNativeModifiers(event.nativeModifiers());
    const QString characters = m_platform.charactersIgnoringModifiers(keyDown.keyCode);
    if (!characters.isNull())
        keyDown.charactersIgnoringModifiers = characters;
    return keyDown;
}

QVEvent QVHotKeyRecordingRoute::keyDownForKeyEventWithoutPlatform(const QKeyEvent &event)
{
    QVEvent keyDown;
    keyDown.type = QVEvent::KeyDown;
    keyDown.keyCode = quint16(event.nativeScanCode());
    keyDown.modifierFlags = QVModifierFlagsForXState(event.nativeModifiers());
    keyDown.isModifierKey = isModifierKey(event.key());
    // Qt names a Latin-1 key by its upper-case character, whatever the modifiers typed.
    if (event.key() > Qt::Key_Space && event.key() <= 0xff)
        keyDown.charactersIgnoringModifiers = QString(QChar(event.key())).toLower();
    return keyDown;
}

void QVHotKeyRecordingRoute::deliverLater(const QVEvent &keyDown)
{
    // Not from inside the platform's event handler: the key may bring up an alert
    // with an event loop of its own.
    QMetaObject::invokeMethod(
        m_field.data(),
        [field = m_field, keyDown] {
            if (field)
                field->keyDown(keyDown);
        },
        Qt::QueuedConnection);
}

bool QVHotKeyRecordingRoute::clickIsOutsideField() const
{
    const QWidget *hit = QApplication::widgetAt(QCursor::pos());
    return !hit || hit->window() != m_field->window();
}
