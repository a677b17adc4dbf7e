#pragma once

#include "QVActionCodes.h"

#include <QJsonArray>
#include <QJsonObject>

// A dozen controls of every kind, some with hot keys, as a user's list might hold them.
inline QJsonArray QVEditorTestControls()
{
    const auto hotKey = [](const QString &text, int keyCode, qint64 flags) {
        return QJsonObject { { QStringLiteral("Identifier"), QStringLiteral("x") },
            { QStringLiteral("Visual Representation"), text }, { QStringLiteral("Key Code"), keyCode },
            { QStringLiteral("Modifier Flags"), flags } };
    };
    constexpr qint64 controlOption = 0x40000 | 0x80000;
    const auto control = [](qint64 action, std::initializer_list<std::pair<const char *, QJsonValue>> values) {
        QJsonObject dictionary { { QStringLiteral("Action"), action } };
        for (const auto &[key, value] : values)
            dictionary.insert(QLatin1String(key), value);
        return dictionary;
    };
    return QJsonArray {
        control(QVAction::Heading, { { "Title", QStringLiteral("Arrows") } }),
        control(QVAction::Move,
            { { "Move Direction", 5 }, { "Move Delta", 10 }, { "Accelerate", true },
                { "Hot Key", hotKey(QStringLiteral("^⌥→"), 114, controlOption) } }),
        control(QVAction::Move,
            { { "Move Direction", 9 }, { "Move Delta", 10 }, { "Collapsed", true },
                { "Hot Key", hotKey(QStringLiteral("^⌥←"), 113, controlOption) } }),
        control(QVAction::Move, { { "Move Direction", 10 }, { "Move Delta", 3 }, { "Confine to Display", true } }),
        control(QVAction::MoveToEdgeOrCorner, { { "Move to Edge/Corner Direction", 4 } }),
        control(QVAction::MoveToCenter, { { "Hot Key", hotKey(QStringLiteral("^⌥C"), 54, controlOption) } }),
        control(QVAction::MoveToOtherDisplay,
            { { "Move to Other Display Direction", 5 }, { "Loop Through Displays", true } }),
        control(QVAction::Heading, { { "Title", QStringLiteral("Clicks") }, { "Collapsed", true } }),
        control(QVAction::Click, { { "Hot Key", hotKey(QStringLiteral("^⌥Space"), 65, controlOption) } }),
        control(QVAction::RightClick, {}),
        control(QVAction::MoveToScreenSection, { { "Hot Key", hotKey(QStringLiteral("^⌥S"), 39, controlOption) } }),
        control(QVAction::None, {}),
    };
}
