#include "QVX11Keyboard.h"

#include "QVModifierFlagBits.h"
#include "QVX11Connection.h"
#include "QVXcbReply.h"

#include <xcb/xcb_keysyms.h>
#include <xcb/xinput.h>
#include <xkbcommon/xkbcommon.h>

// <xcb/xkb.h> names a struct member "explicit".
#define explicit xcb_explicit
#include <xcb/xkb.h>
#undef explicit

namespace
{

constexpr xcb_keysym_t numLockSymbol = 0xff7f;

quint64 sideOfKeySymbol(xcb_keysym_t symbol)
{
    using namespace QVModifierFlag;
    switch (symbol) {
    case 0xffe3: return LeftControl; // Control_L
    case 0xffe4: return RightControl; // Control_R
    case 0xffe1: return LeftShift; // Shift_L
    case 0xffe2: return RightShift; // Shift_R
    case 0xffe9: return LeftOption; // Alt_L
    case 0xffea: return RightOption; // Alt_R
    case 0xffeb: return LeftCommand; // Super_L
    case 0xffec: return RightCommand; // Super_R
    default: return 0;
    }
}

// The device-independent flag that a side flag belongs to.
quint64 modifierOfSide(quint64 side)
{
    using namespace QVModifierFlag;
    if (side & (LeftControl | RightControl))
        return Control;
    if (side & (LeftShift | RightShift))
        return Shift;
    if (side & (LeftOption | RightOption))
        return Option;
    return Command;
}

bool consumeEcho(QHash<xcb_keycode_t, int> &expected, xcb_keycode_t keyCode)
{
    const auto echo = expected.find(keyCode);
    if (echo == expected.end())
        return false;
    if (--*echo == 0)
        expected.erase(echo);
    return true;
}

} // namespace

QVX11Keyboard::QVX11Keyboard(QVX11Connection &connection)
    : m_connection(connection)
{
}

QVX11Keyboard::~QVX11Keyboard()
{
    if (m_symbols)
        xcb_key_symbols_free(m_symbols);
}

bool QVX11Keyboard::initialize(QString *error)
{
    xcb_connection_t *c = m_connection.get();
    const xcb_query_extension_reply_t *xkb = xcb_get_extension_data(c, &xcb_xkb_id);
    const xcb_query_extension_reply_t *xinput = xcb_get_extension_data(c, &xcb_input_id);
    QVXcbReply<xcb_xkb_use_extension_reply_t> xkbVersion(xcb_xkb_use_extension_reply(
        c, xcb_xkb_use_extension(c, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION), nullptr));
    if (!xkb || !xkb->present || !xkbVersion || !xkbVersion->supported) {
        *error = QStringLiteral("the X server has no XKB extension");
        return false;
    }
    QVXcbReply<xcb_input_xi_query_version_reply_t> xiVersion(
        xcb_input_xi_query_version_reply(c, xcb_input_xi_query_version(c, 2, 2), nullptr));
    if (!xinput || !xinput->present || !xiVersion
        || (xiVersion->major_version * 100 + xiVersion->minor_version) < 202) {
        *error = QStringLiteral("the X server has no XInput 2.2 extension");
        return false;
    }
    m_xkbFirstEvent = xkb->first_event;
    m_xinputOpcode = xinput->major_opcode;
    m_minKeyCode = xcb_get_setup(c)->min_keycode;
    m_maxKeyCode = xcb_get_setup(c)->max_keycode;

    // Held keys then send presses only, and one release at the end.
    QVXcbReply<xcb_xkb_per_client_flags_reply_t> flags(xcb_xkb_per_client_flags_reply(c,
        xcb_xkb_per_client_flags(c, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
            XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0, 0),
        nullptr));
    m_detectableAutoRepeat = flags && (flags->value & XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT);

    const uint16_t events
        = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_CONTROLS_NOTIFY;
    const uint16_t mapParts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
    xcb_xkb_select_events(c, XCB_XKB_ID_USE_CORE_KBD, events, 0, events, mapParts, mapParts, nullptr);

    selectRawEvents(false);
    findXTestKeyboards();
    refreshMapping();
    seedHeldModifiers();
    return true;
}

void QVX11Keyboard::selectRawEvents(bool buttons)
{
    struct {
        xcb_input_event_mask_t head;
        uint32_t mask;
    } raw { { XCB_INPUT_DEVICE_ALL_MASTER, 1 },
        XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE
            | (buttons ? uint32_t(XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS) : 0u) };
    xcb_input_xi_select_events(m_connection.get(), m_connection.root(), 1, &raw.head);
}

void QVX11Keyboard::findXTestKeyboards()
{
    xcb_connection_t *c = m_connection.get();
    QVXcbReply<xcb_input_xi_query_device_reply_t> devices(
        xcb_input_xi_query_device_reply(c, xcb_input_xi_query_device(c, XCB_INPUT_DEVICE_ALL), nullptr));
    if (!devices)
        return;
    for (auto it = xcb_input_xi_query_device_infos_iterator(devices.get()); it.rem;
         xcb_input_xi_device_info_next(&it)) {
        const QByteArray name(xcb_input_xi_device_info_name(it.data), xcb_input_xi_device_info_name_length(it.data));
        if (it.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD && name.endsWith("XTEST keyboard"))
            m_xtestKeyboards.insert(it.data->deviceid);
    }
}

void QVX11Keyboard::setWatchesButtons(bool watches)
{
    selectRawEvents(watches);
    m_connection.flush();
}

void QVX11Keyboard::refreshMapping()
{
    if (m_symbols)
        xcb_key_symbols_free(m_symbols);
    m_symbols = xcb_key_symbols_alloc(m_connection.get());
    readModifierSides();
    readNumLockMask();
    // Held keys keep being followed through raw events; a key that stopped being a
    // modifier drops out. Reading the keymap here again would race queued events.
    for (auto it = m_heldModifiers.begin(); it != m_heldModifiers.end();)
        it = m_modifierSides.contains(*it) ? std::next(it) : m_heldModifiers.erase(it);
}

void QVX11Keyboard::readModifierSides()
{
    m_modifierSides.clear();
    for (int keyCode = m_minKeyCode; keyCode <= m_maxKeyCode; ++keyCode) {
        const quint64 side = sideOfKeySymbol(xcb_key_symbols_get_keysym(m_symbols, xcb_keycode_t(keyCode), 0));
        if (side)
            m_modifierSides.insert(xcb_keycode_t(keyCode), side);
    }
}

void QVX11Keyboard::readNumLockMask()
{
    m_numLockMask = 0;
    xcb_connection_t *c = m_connection.get();
    QVXcbReply<xcb_get_modifier_mapping_reply_t> map(
        xcb_get_modifier_mapping_reply(c, xcb_get_modifier_mapping(c), nullptr));
    QVXcbReply<xcb_keycode_t> numLockKeys(xcb_key_symbols_get_keycode(m_symbols, numLockSymbol));
    m_modifierKeys.clear();
    if (!map)
        return;
    const xcb_keycode_t *keys = xcb_get_modifier_mapping_keycodes(map.get());
    const int perModifier = map->keycodes_per_modifier;
    for (int index = 0; index < 8 * perModifier; ++index)
        if (keys[index])
            m_modifierKeys.insert(keys[index]);
    if (!numLockKeys)
        return;
    for (int modifier = 0; modifier < 8; ++modifier)
        for (int index = 0; index < perModifier; ++index)
            for (const xcb_keycode_t *numLock = numLockKeys.get(); *numLock != XCB_NO_SYMBOL; ++numLock)
                if (keys[modifier * perModifier + index] == *numLock)
                    m_numLockMask |= quint16(1u << modifier);
}

void QVX11Keyboard::seedHeldModifiers()
{
    xcb_connection_t *c = m_connection.get();
    QVXcbReply<xcb_query_keymap_reply_t> keymap(xcb_query_keymap_reply(c, xcb_query_keymap(c), nullptr));
    m_heldModifiers.clear();
    if (!keymap)
        return;
    for (auto it = m_modifierSides.cbegin(); it != m_modifierSides.cend(); ++it)
        if (keymap->keys[it.key() / 8] & (1u << (it.key() % 8)))
            m_heldModifiers.insert(it.key());
}

quint64 QVX11Keyboard::modifierFlagsForState(quint16 state) const
{
    quint64 flags = QVModifierFlagsForXState(state);
    for (const xcb_keycode_t keyCode : m_heldModifiers) {
        const quint64 side = m_modifierSides.value(keyCode);
        if (flags & modifierOfSide(side))
            flags |= side;
    }
    return flags;
}

QString QVX11Keyboard::charactersIgnoringModifiers(xcb_keycode_t keyCode) const
{
    const xcb_keysym_t symbol = xcb_key_symbols_get_keysym(m_symbols, keyCode, 0);
    char text[16] = {};
    const int length = xkb_keysym_to_utf8(symbol, text, sizeof text);
    return length > 1 ? QString::fromUtf8(text) : QString();
}

bool QVX11Keyboard::isKnownKeyCode(xcb_keycode_t keyCode) const
{
    return keyCode >= m_minKeyCode && keyCode <= m_maxKeyCode;
}

QVKeyboardService::RepeatThresholds QVX11Keyboard::repeatThresholds() const
{
    if (m_repeatThresholds)
        return *m_repeatThresholds;
    xcb_connection_t *c = m_connection.get();
    QVXcbReply<xcb_xkb_get_controls_reply_t> controls(
        xcb_xkb_get_controls_reply(c, xcb_xkb_get_controls(c, XCB_XKB_ID_USE_CORE_KBD), nullptr));
    if (!controls)
        return {};
    constexpr double ticksPerMillisecond = 60.0 / 1000.0;
    m_repeatThresholds = QVKeyboardService::RepeatThresholds { controls->repeatDelay * ticksPerMillisecond,
        controls->repeatInterval * ticksPerMillisecond };
    return *m_repeatThresholds;
}

QVX11Keyboard::KeyChange QVX11Keyboard::handleRawKeyEvent(const xcb_generic_event_t *event)
{
    if ((event->response_type & 0x7f) != XCB_GE_GENERIC)
        return {};
    const auto *generic = reinterpret_cast<const xcb_ge_generic_event_t *>(event);
    if (generic->extension != m_xinputOpcode)
        return {};
    if (generic->event_type == XCB_INPUT_RAW_BUTTON_PRESS)
        return { KeyKind::ButtonPressed };
    const bool press = generic->event_type == XCB_INPUT_RAW_KEY_PRESS;
    if (!press && generic->event_type != XCB_INPUT_RAW_KEY_RELEASE)
        return {};
    const auto *raw = reinterpret_cast<const xcb_input_raw_key_press_event_t *>(event);
    return trackKey(
        xcb_keycode_t(raw->detail), press, m_xtestKeyboards.isEmpty() || m_xtestKeyboards.contains(raw->sourceid));
}

QVX11Keyboard::KeyChange QVX11Keyboard::trackKey(xcb_keycode_t keyCode, bool press, bool fromXTest)
{
    if (!m_modifierSides.contains(keyCode))
        return { press ? KeyKind::Other : KeyKind::KeyReleased, keyCode, fromXTest };
    // Echoes are counted, not matched: the user's event and ours on the same key
    // are alike, and either order leaves the same count of each.
    if (consumeEcho(press ? m_expectedPressEchoes : m_expectedReleaseEchoes, keyCode))
        return { KeyKind::Other, keyCode, fromXTest };
    if (press) {
        m_heldModifiers.insert(keyCode);
        return { KeyKind::ModifierPressed, keyCode, fromXTest };
    }
    m_heldModifiers.remove(keyCode);
    return { KeyKind::ModifierReleased, keyCode, fromXTest };
}
