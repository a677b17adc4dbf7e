#include "QVX11Platform.h"

#include "QVLog.h"
#include "QVX11Connection.h"
#include "QVX11Displays.h"
#include "QVX11HotKeyGrabs.h"
#include "QVX11InputSynthesizer.h"
#include "QVX11Keyboard.h"
#include "QVX11WindowHints.h"
#include "QVXcbReply.h"

#include <QScopeGuard>
#include <QThread>

#define explicit xcb_explicit
#include <xcb/xkb.h>
#undef explicit

namespace
{
constexpr int keyboardGrabAttempts = 20;
constexpr int keyboardGrabRetryMilliseconds = 5;
} // namespace

std::unique_ptr<QVX11Platform> QVX11Platform::open(std::unique_ptr<QVX11Connection> connection, QString *error)
{
    std::unique_ptr<QVX11Platform> platform(new QVX11Platform(std::move(connection)));
    if (!platform->initialize(error))
        return nullptr;
    return platform;
}

QVX11Platform::QVX11Platform(std::unique_ptr<QVX11Connection> connection)
    : m_connection(std::move(connection))
    , m_keyboard(std::make_unique<QVX11Keyboard>(*m_connection))
    , m_displays(std::make_unique<QVX11Displays>(*m_connection))
    , m_grabs(std::make_unique<QVX11HotKeyGrabs>(*m_connection, *m_keyboard, *m_displays))
    , m_synthesizer(std::make_unique<QVX11InputSynthesizer>(*m_connection, *m_displays, *m_keyboard))
    , m_windowHints(std::make_unique<QVX11WindowHints>(*m_connection))
{
}

QVX11Platform::~QVX11Platform() = default;

bool QVX11Platform::initialize(QString *error)
{
    if (!m_keyboard->initialize(error))
        return false;
    if (!m_synthesizer->initialize()) {
        *error = QStringLiteral("the X server has no XTEST extension");
        return false;
    }
    if (!m_displays->initialize())
        QVLog(QStringLiteral("the X server has no RandR 1.5: the whole screen counts as one monitor"));
    if (!m_keyboard->detectableAutoRepeat())
        QVLog(QStringLiteral("the X server cannot report held keys without repeats; held hot keys may stutter"));
    m_connection->setListener([this](const xcb_generic_event_t *event) { handleEvent(event); });
    m_connection->setBatchEndListener([this] {
        if (m_mappingChanged)
            applyMappingChange();
    });
    m_connection->startWatching();
    m_connection->flush();
    return true;
}

QVDisplayList QVX11Platform::displays() const
{
    return m_displays->current();
}

QVPoint QVX11Platform::mouseLocation() const
{
    QVPoint location;
    m_displays->current(&location);
    return location;
}

QVDisplayService::Snapshot QVX11Platform::displaysAndMouseLocation() const
{
    Snapshot snapshot;
    snapshot.displays = m_displays->current(&snapshot.mouseLocation);
    return snapshot;
}

QVPoint QVX11Platform::windowSystemPointFromGlobal(const QVPoint &global) const
{
    const QVPoint origin = m_displays->primaryOrigin();
    return { global.x + origin.x, global.y + origin.y };
}

bool QVX11Platform::postMouseMoved(const QVPoint &globalPoint)
{
    return m_synthesizer->postMouseMoved(globalPoint);
}

bool QVX11Platform::postMouseButton(bool down, bool rightButton, bool usePrivateSource)
{
    // While a hot key's passive grab is active the server keeps the raw key events
    // from Corvane, and a modifier let go during the click would go unseen: the
    // grab ends here. Its key's release then comes as a raw event.
    if (down && usePrivateSource && !m_keyboardTaken)
        xcb_ungrab_keyboard(m_connection->get(), XCB_CURRENT_TIME);
    return m_synthesizer->postMouseButton(down, rightButton, usePrivateSource);
}

std::optional<QVHotKeyService::Handle> QVX11Platform::registerHotKey(
    const QVHotKeyRegistration &registration, QString *reason)
{
    return m_grabs->registerHotKey(registration, reason);
}

void QVX11Platform::unregisterHotKey(Handle handle)
{
    m_grabs->unregisterHotKey(handle);
}

QVKeyboardService::RepeatThresholds QVX11Platform::keyRepeatThresholds() const
{
    return m_keyboard->repeatThresholds();
}

bool QVX11Platform::takeKeyboard()
{
    xcb_connection_t *c = m_connection->get();
    // Another program may still hold the keyboard until its key is released.
    for (int attempt = 0; attempt < keyboardGrabAttempts; ++attempt) {
        QVXcbReply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(c,
            xcb_grab_keyboard(c, 0, m_connection->root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
            nullptr));
        if (reply && reply->status == XCB_GRAB_STATUS_SUCCESS) {
            m_keyboardTaken = true;
            m_keyboard->setWatchesButtons(true);
            return true;
        }
        QThread::msleep(keyboardGrabRetryMilliseconds);
    }
    return false;
}

void QVX11Platform::releaseKeyboard()
{
    if (!m_keyboardTaken)
        return;
    xcb_ungrab_keyboard(m_connection->get(), XCB_CURRENT_TIME);
    m_keyboard->setWatchesButtons(false);
    m_keyboardTaken = false;
}

quint64 QVX11Platform::modifierFlagsForNativeModifiers(quint32 nativeModifiers) const
{
    return m_keyboard->modifierFlagsForState(quint16(nativeModifiers));
}

QString QVX11Platform::charactersIgnoringModifiers(quint16 keyCode) const
{
    return m_keyboard->isKnownKeyCode(xcb_keycode_t(keyCode))
        ? m_keyboard->charactersIgnoringModifiers(xcb_keycode_t(keyCode))
        : QString();
}

void QVX11Platform::setEventHandler(EventHandler handler)
{
    m_handler = std::move(handler);
}

bool QVX11Platform::isCompositingManagerRunning() const
{
    xcb_connection_t *c = m_connection->get();
    if (m_compositorSelection == XCB_ATOM_NONE) {
        const QByteArray name = QByteArrayLiteral("_NET_WM_CM_S") + QByteArray::number(m_connection->screenNumber());
        QVXcbReply<xcb_intern_atom_reply_t> atom(
            xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, uint16_t(name.size()), name.constData()), nullptr));
        if (!atom)
            return false;
        m_compositorSelection = atom->atom;
    }
    QVXcbReply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, m_compositorSelection), nullptr));
    return owner && owner->owner != XCB_NONE;
}

void QVX11Platform::setWindowListedInTaskbar(quintptr window, bool listed)
{
    m_windowHints->setSkipsTaskbar(xcb_window_t(window), !listed);
}

void QVX11Platform::activateWindow(quintptr window)
{
    m_windowHints->activate(xcb_window_t(window));
}

void QVX11Platform::beep()
{
    xcb_bell(m_connection->get(), 0);
    m_connection->flush();
}

void QVX11Platform::handleEvent(const xcb_generic_event_t *event)
{
    const uint8_t type = event->response_type & 0x7f;
    if (m_displays->handleEvent(event))
        return;
    switch (type) {
    case XCB_KEY_PRESS: handleKey(event, true); return;
    case XCB_KEY_RELEASE: handleKey(event, false); return;
    case XCB_MAPPING_NOTIFY: m_mappingChanged = true; return;
    case 0: {
        const auto *error = reinterpret_cast<const xcb_generic_error_t *>(event);
        QVDebugLog(QStringLiteral("X error %1 for request %2.%3")
                       .arg(error->error_code)
                       .arg(error->major_code)
                       .arg(error->minor_code));
        return;
    }
    default: break;
    }
    const QVX11Keyboard::KeyChange change = m_keyboard->handleRawKeyEvent(event);
    switch (change.kind) {
    case QVX11Keyboard::KeyKind::ModifierPressed:
    case QVX11Keyboard::KeyKind::ModifierReleased: modifierKeyChanged(change); return;
    case QVX11Keyboard::KeyKind::KeyReleased:
        m_grabs->handleUngrabbedRelease(change.keyCode, [this](const QVEventRef &release) { deliver(release); });
        return;
    case QVX11Keyboard::KeyKind::ButtonPressed:
        if (m_keyboardTaken && m_handler) {
            // A click elsewhere: whoever has the keyboard should let it go.
            auto click = std::make_shared<QVEvent>();
            click->type = QVEvent::LeftMouseDown;
            m_handler(click);
        }
        return;
    case QVX11Keyboard::KeyKind::Other: return;
    case QVX11Keyboard::KeyKind::NotRaw: break;
    }
    if (type == m_keyboard->xkbFirstEvent()) {
        const uint8_t xkbType = reinterpret_cast<const uint8_t *>(event)[1];
        if (xkbType == XCB_XKB_CONTROLS_NOTIFY || xkbType == XCB_XKB_NEW_KEYBOARD_NOTIFY)
            m_keyboard->forgetRepeatThresholds();
        // A new keyboard that only stands for another device (the XTest one, say) changes nothing.
        if (xkbType == XCB_XKB_MAP_NOTIFY
            || (xkbType == XCB_XKB_NEW_KEYBOARD_NOTIFY
                && (reinterpret_cast<const xcb_xkb_new_keyboard_notify_event_t *>(event)->changed
                    & XCB_XKB_NKN_DETAIL_KEYCODES)))
            m_mappingChanged = true;
    }
}

void QVX11Platform::deliver(const QVEventRef &event)
{
    if (m_handler)
        m_handler(event);
}

void QVX11Platform::modifierKeyChanged(const QVX11Keyboard::KeyChange &change)
{
    if (change.kind == QVX11Keyboard::KeyKind::ModifierPressed)
        m_synthesizer->modifierPressed(change.keyCode);
    else if (change.kind == QVX11Keyboard::KeyKind::ModifierReleased)
        m_synthesizer->modifierReleased(change.keyCode, change.fromXTest);
}

void QVX11Platform::handleKey(const xcb_generic_event_t *event, bool press)
{
    const auto *key = reinterpret_cast<const xcb_key_press_event_t *>(event);
    // Key events reach Corvane only while it grabs the keyboard, when it gets no raw events.
    modifierKeyChanged(m_keyboard->trackKey(key->detail, press));
    const auto sink = [this](const QVEventRef &delivered) { deliver(delivered); };
    // The event tells where the pointer was at the press: unless a motion of ours
    // was still on its way then, the action needs no pointer query.
    if (m_synthesizer->motionProcessedBefore(event->full_sequence))
        m_displays->setPointerHint(QPoint(key->root_x, key->root_y));
    const auto clearHint = qScopeGuard([this] { m_displays->setPointerHint(std::nullopt); });
    // A hot key's own release always ends its repetition, even while the keyboard is taken.
    if (!press || !m_keyboardTaken) {
        if (m_grabs->handleKeyEvent(key, press, sink) || !m_keyboardTaken)
            return;
    }
    if (!press)
        return;
    auto keyDown = std::make_shared<QVEvent>();
    keyDown->type = QVEvent::KeyDown;
    keyDown->keyCode = key->detail;
    keyDown->modifierFlags = m_keyboard->modifierFlagsForState(key->state);
    keyDown->charactersIgnoringModifiers = m_keyboard->charactersIgnoringModifiers(key->detail);
    keyDown->isModifierKey = m_keyboard->isModifierKey(key->detail);
    keyDown->location = m_displays->windowPointFromRoot(key->root_x, key->root_y);
    deliver(keyDown);
}

void QVX11Platform::applyMappingChange()
{
    m_mappingChanged = false;
    m_keyboard->refreshMapping();
    m_grabs->regrabAll();
    QVDebugLog(QStringLiteral("keyboard mapping changed: hot keys grabbed again"));
}
