#include "QVXdgShortcutTrigger.h"

#include <QStringList>

#include <memory>

#include <xkbcommon/xkbcommon.h>

namespace
{

constexpr quint32 carbonCommand = 0x100;
constexpr quint32 carbonShift = 0x200;
constexpr quint32 carbonOption = 0x800;
constexpr quint32 carbonControl = 0x1000;

struct KeymapDeleter {
    void operator()(xkb_keymap *keymap) const { xkb_keymap_unref(keymap); }
};

// The default keymap (rules evdev, layout us unless XKB_DEFAULT_* say otherwise),
// made once: compiling a keymap takes milliseconds.
xkb_keymap *defaultKeymap()
{
    static const std::unique_ptr<xkb_keymap, KeymapDeleter> keymap = [] {
        xkb_context *context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
        xkb_keymap *made = context ? xkb_keymap_new_from_names(context, nullptr, XKB_KEYMAP_COMPILE_NO_FLAGS) : nullptr;
        if (context)
            xkb_context_unref(context);
        return std::unique_ptr<xkb_keymap, KeymapDeleter>(made);
    }();
    return keymap.get();
}

} // namespace

QString QVXdgShortcutTrigger::keyName(quint16 keyCode)
{
    xkb_keymap *keymap = defaultKeymap();
    if (!keymap || keyCode < xkb_keymap_min_keycode(keymap) || keyCode > xkb_keymap_max_keycode(keymap))
        return {};
    const xkb_keysym_t *symbols = nullptr;
    if (xkb_keymap_key_get_syms_by_level(keymap, keyCode, 0, 0, &symbols) < 1)
        return {};
    char name[64];
    if (xkb_keysym_get_name(symbols[0], name, sizeof name) <= 0)
        return {};
    QString text = QString::fromLatin1(name);
    // Letters as the desktops show them (Plasma answers "Ctrl+Alt+K" for "CTRL+ALT+K").
    if (text.size() == 1)
        text = text.toUpper();
    return text;
}

QString QVXdgShortcutTrigger::fromKeyCode(quint16 keyCode, quint32 carbonModifiers)
{
    const QString key = keyName(keyCode);
    if (key.isEmpty())
        return {};
    QStringList parts;
    if (carbonModifiers & carbonControl)
        parts << QStringLiteral("CTRL");
    if (carbonModifiers & carbonOption)
        parts << QStringLiteral("ALT");
    if (carbonModifiers & carbonShift)
        parts << QStringLiteral("SHIFT");
    if (carbonModifiers & carbonCommand)
        parts << QStringLiteral("LOGO");
    parts << key;
    return parts.join(QLatin1Char('+'));
}
