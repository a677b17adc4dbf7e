#pragma once

#include "QVModifierFlagBits.h"

#include <QtGlobal>

// Every bit a stored hot key may carry: the modifiers and the sides of their keys.
constexpr quint64 QVKnownModifierFlags = QVModifierFlag::CapsLock | QVModifierFlag::Shift | QVModifierFlag::Control
    | QVModifierFlag::Option | QVModifierFlag::Command | QVModifierFlag::Function | QVModifierFlag::DeviceDependentMask;

struct QVModifierMatchRules final {
    bool ignoreCapsLock = true;
    bool requireExactModifierKeyMatches = false;
};

// Whether two sets of flags name the same modifiers under the given rules.
bool QVIsModifierFlagsMatch(quint64 first, quint64 second, QVModifierMatchRules rules);
// The same under the user's current settings.
bool QVIsModifierFlagsMatch(quint64 first, quint64 second);

quint32 QVCarbonModifiersFromCocoaModifiers(quint32 flags);
