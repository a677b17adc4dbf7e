#pragma once

#include "QVModifierFlagBits.h"

#include <QtGlobal>

struct QVModifierMatchRules final
{
    bool ignoreCapsLock = true;
    bool requireExactModifierKeyMatches = false;
};

// Whether two sets of flags name the same modifiers under the given rules.
bool QVIsModifierFlagsMatch(quint64 first, quint64 second, QVModifierMatchRules rules);
// The same under the user's current settings.
bool QVIsModifierFlagsMatch(quint64 first, quint64 second);

quint32 QVCarbonModifiersFromCocoaModifiers(quint32 flags);
