#pragma once

#include <QtGlobal>

#include <array>
#include <utility>

// Modifier flags as stored and passed around: the device-independent bits above
// bit 16, the side of each modifier key in the low bits.
namespace QVModifierFlag
{
constexpr quint64 CapsLock = 0x10000;
constexpr quint64 Shift = 0x20000;
constexpr quint64 Control = 0x40000;
constexpr quint64 Option = 0x80000;
constexpr quint64 Command = 0x100000;
constexpr quint64 Function = 0x800000;

constexpr quint64 LeftControl = 0x1;
constexpr quint64 RightControl = 0x2000;
constexpr quint64 LeftShift = 0x2;
constexpr quint64 RightShift = 0x4;
constexpr quint64 LeftCommand = 0x8;
constexpr quint64 RightCommand = 0x10;
constexpr quint64 LeftOption = 0x20;
constexpr quint64 RightOption = 0x40;

constexpr quint64 DeviceDependentMask = 0x207F;
constexpr quint64 DeviceIndependentMask = 0xFFFF0000;
} // namespace QVModifierFlag

// Modifier bits of the hot key service.
namespace QVCarbonModifier
{
constexpr quint32 Command = 0x100;
constexpr quint32 Shift = 0x200;
constexpr quint32 Option = 0x800;
constexpr quint32 Control = 0x1000;
constexpr quint32 Function = 0x20000;
} // namespace QVCarbonModifier

// The modifiers both notations know: each stored flag beside its Carbon bit.
inline constexpr std::array<std::pair<quint64, quint32>, 5> QVModifierFlagCarbonPairs { {
    { QVModifierFlag::Control, QVCarbonModifier::Control },
    { QVModifierFlag::Shift, QVCarbonModifier::Shift },
    { QVModifierFlag::Command, QVCarbonModifier::Command },
    { QVModifierFlag::Option, QVCarbonModifier::Option },
    { QVModifierFlag::Function, QVCarbonModifier::Function },
} };

constexpr quint64 QVModifierFlagsFromCarbonModifiers(quint32 carbon)
{
    quint64 flags = 0;
    for (const auto &[flag, bit] : QVModifierFlagCarbonPairs) {
        if (carbon & bit)
            flags |= flag;
    }
    return flags;
}

// The stored flags for the modifier state of an X key event (Shift, Lock, Control,
// Mod1 as Option, Mod4 as Command), without the sides of the keys.
constexpr quint64 QVModifierFlagsForXState(quint32 state)
{
    quint64 flags = 0;
    if (state & 0x1)
        flags |= QVModifierFlag::Shift;
    if (state & 0x2)
        flags |= QVModifierFlag::CapsLock;
    if (state & 0x4)
        flags |= QVModifierFlag::Control;
    if (state & 0x8)
        flags |= QVModifierFlag::Option;
    if (state & 0x40)
        flags |= QVModifierFlag::Command;
    return flags;
}
