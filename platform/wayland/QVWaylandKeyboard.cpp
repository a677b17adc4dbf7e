#include "QVWaylandKeyboard.h"

#include "QVWaylandConnection.h"
#include "virtual-keyboard-unstable-v1-client-protocol.h"

#include <QTimer>

#include <wayland-client.h>
#include <xkbcommon/xkbcommon.h>

#include <sys/mman.h>
#include <unistd.h>

namespace
{

// wlroots' defaults, which sway keeps unless configured otherwise.
constexpr int defaultRepeatRate = 25;
constexpr int defaultRepeatDelay = 600;
constexpr quint32 evdevToX = 8; // X key codes are the kernel's plus 8, as xkb's are

// Keys that change modifiers rather than type: Shift_L ... Hyper_R, the ISO level
// and group keys, Mode_switch and Num_Lock.
bool isModifierSymbol(xkb_keysym_t symbol)
{
    return (symbol >= XKB_KEY_Shift_L && symbol <= XKB_KEY_Hyper_R)
        || (symbol >= XKB_KEY_ISO_Lock && symbol <= XKB_KEY_ISO_Level5_Lock) || symbol == XKB_KEY_Mode_switch
        || symbol == XKB_KEY_Num_Lock;
}

QVWaylandKeyboard *keyboardOf(void *data)
{
    return static_cast<QVWaylandKeyboard *>(data);
}

void keymapReceived(void *data, wl_keyboard *, uint32_t format, int32_t fd, uint32_t size)
{
    void *text = format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1 && size > 0
        ? mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0)
        : MAP_FAILED;
    close(fd);
    if (text == MAP_FAILED)
        return;
    // The text ends with a NUL that is not part of it.
    keyboardOf(data)->setKeymap(
        QByteArray(static_cast<const char *>(text), qsizetype(qstrnlen(static_cast<const char *>(text), size))));
    munmap(text, size);
}

void keyboardEntered(void *, wl_keyboard *, uint32_t, wl_surface *, wl_array *) { }
void keyboardLeft(void *data, wl_keyboard *, uint32_t, wl_surface *)
{
    keyboardOf(data)->focusLeft();
}

void keyChanged(void *data, wl_keyboard *, uint32_t, uint32_t, uint32_t key, uint32_t state)
{
    keyboardOf(data)->keyChanged(key, state == WL_KEYBOARD_KEY_STATE_PRESSED);
}

void modifiersChanged(
    void *data, wl_keyboard *, uint32_t, uint32_t depressed, uint32_t latched, uint32_t locked, uint32_t group)
{
    keyboardOf(data)->setModifiers({ depressed, latched, locked, group });
}

void repeatInfo(void *data, wl_keyboard *, int32_t rate, int32_t delay)
{
    keyboardOf(data)->setRepeat(rate, delay);
}

const wl_keyboard_listener keyboardListener = { .keymap = keymapReceived,
    .enter = keyboardEntered,
    .leave = keyboardLeft,
    .key = keyChanged,
    .modifiers = modifiersChanged,
    .repeat_info = repeatInfo };

int sharedMemory(const QByteArray &contents)
{
    const int fd = memfd_create("corvane-keymap", MFD_CLOEXEC);
    if (fd >= 0 && pwrite(fd, contents.constData(), size_t(contents.size()), 0) != contents.size()) {
        close(fd);
        return -1;
    }
    return fd;
}

} // namespace

QVWaylandKeyboard::QVWaylandKeyboard(QVWaylandConnection &connection)
    : m_connection(connection)
    , m_xkb(xkb_context_new(XKB_CONTEXT_NO_FLAGS))
    , m_repeatTimer(std::make_unique<QTimer>())
{
    QObject::connect(m_repeatTimer.get(), &QTimer::timeout, m_repeatTimer.get(), [this] { repeatKey(); });
}

QVWaylandKeyboard::~QVWaylandKeyboard()
{
    if (m_virtual)
        zwp_virtual_keyboard_v1_destroy(m_virtual);
    setCapabilities(0);
    xkb_keymap_unref(m_keymap);
    xkb_context_unref(m_xkb);
}

void QVWaylandKeyboard::setCapabilities(quint32 capabilities)
{
    const bool hasKeyboard = capabilities & WL_SEAT_CAPABILITY_KEYBOARD;
    if (hasKeyboard && !m_keyboard) {
        m_keyboard = wl_seat_get_keyboard(m_seat);
        wl_keyboard_add_listener(m_keyboard, &keyboardListener, this);
    } else if (!hasKeyboard && m_keyboard) {
        if (wl_keyboard_get_version(m_keyboard) >= WL_KEYBOARD_RELEASE_SINCE_VERSION)
            wl_keyboard_release(m_keyboard);
        else
            wl_keyboard_destroy(m_keyboard);
        m_keyboard = nullptr;
        focusLeft();
    }
}

void QVWaylandKeyboard::setKeymap(QByteArray text)
{
    m_keymapText = std::move(text);
    xkb_keymap_unref(m_keymap);
    m_keymap = nullptr;
}

QVKeyboardService::RepeatThresholds QVWaylandKeyboard::repeatThresholds() const
{
    // A rate of 0 turns repetition off for typing; Corvane's own repetition keeps the usual pace.
    const bool known = m_repeat && m_repeat->rate > 0 && m_repeat->delay >= 0;
    const int rate = known ? m_repeat->rate : defaultRepeatRate;
    const int delay = known ? m_repeat->delay : defaultRepeatDelay;
    constexpr double ticksPerSecond = 60.0;
    return { delay * ticksPerSecond / 1000.0, ticksPerSecond / rate };
}

xkb_keymap *QVWaylandKeyboard::keymap() const
{
    if (m_keymap)
        return m_keymap;
    if (!m_keymapText.isEmpty()) {
        m_keymap = xkb_keymap_new_from_buffer(m_xkb, m_keymapText.constData(), size_t(m_keymapText.size()),
            XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS);
    }
    if (!m_keymap) {
        // No seat keyboard yet: the system's default layout (XKB_DEFAULT_LAYOUT ...).
        const xkb_rule_names names = {};
        m_keymap = xkb_keymap_new_from_names(m_xkb, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
    }
    return m_keymap;
}

QString QVWaylandKeyboard::charactersIgnoringModifiers(quint16 keyCode) const
{
    xkb_keymap *map = keymap();
    const xkb_keysym_t *symbols = nullptr;
    if (!map || xkb_keymap_key_get_syms_by_level(map, keyCode, 0, 0, &symbols) < 1)
        return {};
    char text[16] = {};
    const int length = xkb_keysym_to_utf8(symbols[0], text, sizeof text);
    return length > 1 ? QString::fromUtf8(text) : QString();
}

bool QVWaylandKeyboard::createVirtualKeyboard()
{
    if (m_virtual)
        return true;
    if (!m_manager || !m_seat || !keymap())
        return false;
    // The seat's own map, so that the focused client's keys mean what they meant.
    QByteArray text = m_keymapText;
    if (text.isEmpty()) {
        char *own = xkb_keymap_get_as_string(keymap(), XKB_KEYMAP_FORMAT_TEXT_V1);
        text = QByteArray(own);
        free(own);
    }
    text.append('\0');
    const int fd = sharedMemory(text);
    if (fd < 0)
        return false;
    m_virtual = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(m_manager, m_seat);
    zwp_virtual_keyboard_v1_keymap(m_virtual, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, fd, quint32(text.size()));
    close(fd);
    return true;
}

void QVWaylandKeyboard::sendModifiers(const Modifiers &modifiers)
{
    zwp_virtual_keyboard_v1_modifiers(
        m_virtual, modifiers.depressed, modifiers.latched, modifiers.locked, modifiers.group);
    m_sent = modifiers;
}

bool QVWaylandKeyboard::clearModifiers()
{
    if (!m_connection.isConnected() || !m_virtual)
        return false;
    // Locks (Caps Lock, Num Lock) are no held keys: kept as last known.
    const Modifiers known = m_modifiers.value_or(Modifiers {});
    const Modifiers cleared { 0, 0, known.locked, known.group };
    // wlroots takes a keyboard as used only when its state changes: when it has this
    // state already, a moment of Shift (a state, no key press) makes the change.
    constexpr quint32 shiftMask = 1; // Shift is the first real modifier of every key map
    if (m_sent == cleared)
        sendModifiers({ shiftMask, 0, known.locked, known.group });
    sendModifiers(cleared);
    m_connection.flush();
    return true;
}

void QVWaylandKeyboard::restoreModifiers()
{
    if (!m_virtual || !m_modifiers || !m_connection.isConnected())
        return;
    sendModifiers(*m_modifiers);
    m_connection.flush();
}

void QVWaylandKeyboard::focusLeft()
{
    m_modifiers.reset();
    m_repeatTimer->stop();
    m_repeatingKey = 0;
}

QVEventRef QVWaylandKeyboard::keyDownEvent(quint32 keyCode) const
{
    auto event = std::make_shared<QVEvent>();
    event->type = QVEvent::KeyDown;
    event->keyCode = quint16(keyCode);
    // The real modifiers keep X's bit order in every xkb key map.
    const Modifiers held = m_modifiers.value_or(Modifiers {});
    event->modifierFlags = QVModifierFlagsForXState(held.depressed | held.latched | held.locked);
    event->charactersIgnoringModifiers = charactersIgnoringModifiers(quint16(keyCode));
    const xkb_keysym_t *symbols = nullptr;
    event->isModifierKey = keymap() && xkb_keymap_key_get_syms_by_level(keymap(), keyCode, 0, 0, &symbols) > 0
        && isModifierSymbol(symbols[0]);
    return event;
}

void QVWaylandKeyboard::keyChanged(quint32 key, bool pressed)
{
    const quint32 keyCode = key + evdevToX;
    if (!pressed) {
        if (keyCode == m_repeatingKey) {
            m_repeatTimer->stop();
            m_repeatingKey = 0;
        }
        return;
    }
    const QVEventRef event = keyDownEvent(keyCode);
    // Wayland leaves repetition to the client, and a new key ends the last one's.
    m_repeatTimer->stop();
    m_repeatingKey = 0;
    const QVKeyboardService::RepeatThresholds thresholds = repeatThresholds();
    const bool repeats = !(m_repeat && m_repeat->rate == 0) && !event->isModifierKey && keymap()
        && xkb_keymap_key_repeats(keymap(), keyCode);
    if (repeats) {
        m_repeatingKey = keyCode;
        m_repeatTimer->start(qRound(thresholds.initialTicks * 1000.0 / 60.0));
    }
    if (m_keyHandler)
        m_keyHandler(event);
}

void QVWaylandKeyboard::repeatKey()
{
    m_repeatTimer->setInterval(qMax(1, qRound(repeatThresholds().repeatTicks * 1000.0 / 60.0)));
    if (m_keyHandler && m_repeatingKey)
        m_keyHandler(keyDownEvent(m_repeatingKey));
}
