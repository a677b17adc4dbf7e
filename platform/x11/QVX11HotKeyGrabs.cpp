#include "QVX11HotKeyGrabs.h"

#include "QVHotKeyService.h"
#include "QVLog.h"
#include "QVModifierFlagBits.h"
#include "QVX11Connection.h"
#include "QVX11Displays.h"
#include "QVX11Keyboard.h"
#include "QVXcbReply.h"

#include <QStringList>

namespace
{

// The core modifier bits a grab can name.
constexpr quint16 coreModifierMask = 0xff;

quint16 xModifiersFromCarbon(quint32 carbon)
{
    quint16 modifiers = 0;
    if (carbon & QVCarbonModifier::Shift)
        modifiers |= XCB_MOD_MASK_SHIFT;
    if (carbon & QVCarbonModifier::Control)
        modifiers |= XCB_MOD_MASK_CONTROL;
    if (carbon & QVCarbonModifier::Option)
        modifiers |= XCB_MOD_MASK_1;
    if (carbon & QVCarbonModifier::Command)
        modifiers |= XCB_MOD_MASK_4;
    return modifiers;
}

} // namespace

QVX11HotKeyGrabs::QVX11HotKeyGrabs(QVX11Connection &connection, QVX11Keyboard &keyboard, QVX11Displays &displays)
    : m_connection(connection)
    , m_keyboard(keyboard)
    , m_displays(displays)
{
}

QList<quint16> QVX11HotKeyGrabs::modifierVariants(const QVHotKeyRegistration &registration) const
{
    quint16 base = xModifiersFromCarbon(registration.carbonModifiers);
    if (registration.capsLock == QVCapsLockRule::MustBeOn)
        base |= XCB_MOD_MASK_LOCK;
    QList<quint16> ignored;
    if (m_keyboard.numLockMask() && !(base & m_keyboard.numLockMask()))
        ignored.append(m_keyboard.numLockMask());
    if (registration.capsLock == QVCapsLockRule::Ignored && !(base & XCB_MOD_MASK_LOCK))
        ignored.append(XCB_MOD_MASK_LOCK);
    QList<quint16> variants { base };
    for (const quint16 lock : ignored) {
        const qsizetype count = variants.size();
        for (qsizetype index = 0; index < count; ++index)
            variants.append(variants[index] | lock);
    }
    return variants;
}

QString QVX11HotKeyGrabs::describe(const QVHotKeyRegistration &registration) const
{
    QStringList parts;
    const quint16 modifiers = xModifiersFromCarbon(registration.carbonModifiers);
    if (modifiers & XCB_MOD_MASK_CONTROL)
        parts << QStringLiteral("Control");
    if (modifiers & XCB_MOD_MASK_1)
        parts << QStringLiteral("Alt");
    if (modifiers & XCB_MOD_MASK_SHIFT)
        parts << QStringLiteral("Shift");
    if (modifiers & XCB_MOD_MASK_4)
        parts << QStringLiteral("Super");
    parts << QStringLiteral("key code %1").arg(registration.keyCode);
    return parts.join(u'+');
}

std::optional<QVHotKeyService::Handle> QVX11HotKeyGrabs::registerHotKey(
    const QVHotKeyRegistration &registration, QString *reason)
{
    auto refuse = [reason](const QString &why) -> std::optional<QVHotKeyService::Handle> {
        if (reason)
            *reason = why;
        return std::nullopt;
    };
    if (registration.keyCode > 255 || !m_keyboard.isKnownKeyCode(xcb_keycode_t(registration.keyCode)))
        return refuse(QStringLiteral("key code %1 is not a key of this keyboard").arg(registration.keyCode));
    if (registration.carbonModifiers & QVCarbonModifier::Function)
        return refuse(QStringLiteral("X has no Fn modifier to grab"));

    const Registration entry { registration, modifierVariants(registration) };
    const QList<GrabKey> keys = grabKeys(entry);
    bool refused = false;
    const QList<GrabKey> newlyGrabbed = grab(keys, &refused);
    if (refused) {
        ungrab(newlyGrabbed);
        return refuse(QStringLiteral("another program holds %1").arg(describe(registration)));
    }
    const QVHotKeyService::Handle handle = m_nextHandle++;
    for (const GrabKey &key : keys)
        m_grabs[key].append(handle);
    m_registrations.insert(handle, entry);
    return handle;
}

QList<QVX11HotKeyGrabs::GrabKey> QVX11HotKeyGrabs::grabKeys(const Registration &entry)
{
    QList<GrabKey> keys;
    for (const quint16 variant : entry.modifierVariants)
        keys.append({ entry.keyCode(), variant });
    return keys;
}

QList<QVX11HotKeyGrabs::GrabKey> QVX11HotKeyGrabs::grab(const QList<GrabKey> &keys, bool *refused)
{
    xcb_connection_t *c = m_connection.get();
    QList<QPair<GrabKey, xcb_void_cookie_t>> cookies;
    for (const GrabKey &key : keys)
        if (!m_grabs.contains(key))
            cookies.append({ key,
                xcb_grab_key_checked(
                    c, 0, m_connection.root(), key.second, key.first, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC) });
    QList<GrabKey> grabbed;
    *refused = false;
    for (const auto &[key, cookie] : cookies) {
        QVXcbReply<xcb_generic_error_t> error(xcb_request_check(c, cookie));
        if (error)
            *refused = true; // BadAccess: another client holds the combination
        else
            grabbed.append(key);
    }
    return grabbed;
}

void QVX11HotKeyGrabs::ungrab(const QList<GrabKey> &keys)
{
    for (const GrabKey &key : keys)
        xcb_ungrab_key(m_connection.get(), key.first, m_connection.root(), key.second);
    m_connection.flush();
}

void QVX11HotKeyGrabs::unregisterHotKey(QVHotKeyService::Handle handle)
{
    const auto entry = m_registrations.constFind(handle);
    if (entry == m_registrations.cend())
        return;
    QList<GrabKey> released;
    for (const GrabKey &key : grabKeys(*entry)) {
        QList<QVHotKeyService::Handle> &owners = m_grabs[key];
        owners.removeAll(handle);
        if (owners.isEmpty()) {
            m_grabs.remove(key);
            released.append(key);
        }
    }
    ungrab(released);
    m_registrations.erase(entry);
}

void QVX11HotKeyGrabs::regrabAll()
{
    // Only grabs whose lock variants changed are redone: ungrabbing everything
    // would let a press made in between slip through to another window.
    QMap<GrabKey, QList<QVHotKeyService::Handle>> grabs;
    for (auto it = m_registrations.begin(); it != m_registrations.end(); ++it) {
        it->modifierVariants = modifierVariants(it->request);
        for (const GrabKey &key : grabKeys(*it))
            grabs[key].append(it.key());
    }
    QList<GrabKey> gone;
    for (auto it = m_grabs.cbegin(); it != m_grabs.cend(); ++it)
        if (!grabs.contains(it.key()))
            gone.append(it.key());
    ungrab(gone);
    for (const GrabKey &key : gone)
        m_grabs.remove(key);
    bool refused = false;
    grab(grabs.keys(), &refused); // skips what is grabbed already
    if (refused)
        QVLog(QStringLiteral("after a keyboard change, another program holds a combination of a hot key"));
    m_grabs = grabs;
}

QList<QVHotKeyService::Handle> QVX11HotKeyGrabs::handlesFor(xcb_keycode_t keyCode, quint16 state) const
{
    return m_grabs.value({ keyCode, quint16(state & coreModifierMask) });
}

bool QVX11HotKeyGrabs::handleKeyEvent(const xcb_key_press_event_t *event, bool press, const EventSink &sink)
{
    const xcb_keycode_t keyCode = event->detail;
    QList<QVHotKeyService::Handle> handles;
    if (press) {
        if (m_keysDown.contains(keyCode))
            return true; // the server's autorepeat: Corvane repeats on its own
        handles = handlesFor(keyCode, event->state);
        if (handles.isEmpty())
            return false;
        m_keysDown.insert(keyCode, handles);
    } else {
        if (!m_keysDown.contains(keyCode))
            return false;
        handles = m_keysDown.take(keyCode);
    }
    deliver(keyCode, handles, press, m_keyboard.modifierFlagsForState(event->state),
        m_displays.windowPointFromRoot(event->root_x, event->root_y), sink);
    return true;
}

bool QVX11HotKeyGrabs::handleUngrabbedRelease(xcb_keycode_t keyCode, const EventSink &sink)
{
    if (!m_keysDown.contains(keyCode))
        return false;
    deliver(keyCode, m_keysDown.take(keyCode), false, 0, {}, sink);
    return true;
}

void QVX11HotKeyGrabs::deliver(xcb_keycode_t keyCode, const QList<QVHotKeyService::Handle> &handles, bool press,
    quint64 flags, const QVPoint &location, const EventSink &sink)
{
    // A release ends the repetition whichever registration it was: one event is enough.
    const qsizetype count = press ? handles.size() : 1;
    for (qsizetype index = 0; index < count; ++index) {
        auto hotKeyEvent = std::make_shared<QVEvent>();
        hotKeyEvent->type = QVEvent::SystemDefined;
        hotKeyEvent->subtype = press ? QVEvent::HotKeyPressed : QVEvent::HotKeyReleased;
        hotKeyEvent->data1 = handles[index];
        hotKeyEvent->keyCode = keyCode;
        hotKeyEvent->modifierFlags = flags;
        hotKeyEvent->location = location;
        sink(hotKeyEvent);
    }
}
