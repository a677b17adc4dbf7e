#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>

// How the Caps Lock state takes part in a registration.
enum class QVCapsLockRule {
    Ignored, // pressed with Caps Lock on or off alike
    MustBeOff,
    MustBeOn,
};

struct QVHotKeyRegistration final {
    quint16 keyCode = 0;
    quint32 carbonModifiers = 0; // control 0x1000, shift 0x200, command 0x100, option 0x800, fn 0x20000
    QVCapsLockRule capsLock = QVCapsLockRule::Ignored;
    quint32 signature = 0;
    quint32 identifier = 0;
};

// The system-wide hot key service. Presses and releases of registered keys
// arrive as system-defined events whose first data word is the handle.
class QVHotKeyService
{
public:
    using Handle = quint64; // never 0

    virtual ~QVHotKeyService() = default;

    // A handle, or nothing when the combination is refused; reason says why.
    virtual std::optional<Handle> registerHotKey(const QVHotKeyRegistration &registration, QString *reason = nullptr)
        = 0;
    virtual void unregisterHotKey(Handle handle) = 0;
    // Whether the window system lets Corvane take keys at all. Where it does not (a
    // wlroots compositor binds keys itself), the desktop binds `corvane --perform`.
    virtual bool grantsHotKeys() const { return true; }
};
