#include "QVScreenOverlayCommand.h"

#include "QVActionCodes.h"
#include "QVEvent.h"
#include "QVKeyNames.h"

QVScreenOverlayCommand QVScreenOverlayCommand::forKeyDown(const QVEvent &event)
{
    // Keys without a character of their own are told by their key code.
    switch (event.keyCode) {
    case QVKeyCode::LeftArrow: return { AddStep, QVPosition::Left };
    case QVKeyCode::RightArrow: return { AddStep, QVPosition::Right };
    case QVKeyCode::UpArrow: return { AddStep, QVPosition::Top };
    case QVKeyCode::DownArrow: return { AddStep, QVPosition::Bottom };
    case QVKeyCode::Delete:
    case QVKeyCode::ForwardDelete: return { RemoveLastStep };
    case QVKeyCode::Return: return { Perform };
    case QVKeyCode::Tab: return { NextDisplay };
    default: break;
    }
    const QString characters = event.charactersIgnoringModifiers.toLower();
    if (characters.isEmpty())
        return { Ignore };
    if (characters == QLatin1String(","))
        return { OpenPreferences };
    if (characters == QLatin1String(" "))
        return { Perform };
    switch (characters.front().unicode()) {
    case u'h': return { AddStep, QVPosition::Left };
    case u'l': return { AddStep, QVPosition::Right };
    case u'k': return { AddStep, QVPosition::Top };
    case u'j': return { AddStep, QVPosition::Bottom };
    default: return { Close }; // Escape, the keypad's Enter, letters, digits
    }
}
