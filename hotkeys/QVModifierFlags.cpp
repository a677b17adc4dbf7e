#include "QVModifierFlags.h"

#include "QVHotKey.h"

bool QVIsModifierFlagsMatch(quint64 first, quint64 second, QVModifierMatchRules rules)
{
    if (rules.ignoreCapsLock) {
        first |= QVModifierFlag::CapsLock;
        second |= QVModifierFlag::CapsLock;
    }
    const bool plain
        = (first & QVModifierFlag::DeviceIndependentMask) == (second & QVModifierFlag::DeviceIndependentMask);
    // Side information counts only when both sides carry it.
    if (!rules.requireExactModifierKeyMatches || !(first & QVModifierFlag::DeviceDependentMask)
        || !(second & QVModifierFlag::DeviceDependentMask))
        return plain;
    return plain && (first & QVModifierFlag::DeviceDependentMask) == (second & QVModifierFlag::DeviceDependentMask);
}

bool QVIsModifierFlagsMatch(quint64 first, quint64 second)
{
    return QVIsModifierFlagsMatch(
        first, second, { QVHotKey::ignoreCapsLock(), QVHotKey::requireExactModifierKeyMatches() });
}

quint32 QVCarbonModifiersFromCocoaModifiers(quint32 flags)
{
    quint32 modifiers = 0;
    for (const auto &[flag, bit] : QVModifierFlagCarbonPairs) {
        if (flags & flag)
            modifiers |= bit;
    }
    return modifiers;
}
