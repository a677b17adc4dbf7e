#pragma once

// Keyboard settings and ownership that the pointer tools need.
class QVKeyboardService
{
public:
    struct RepeatThresholds {
        double initialTicks = 0.0; // delay before the first repeat, 1/60 s
        double repeatTicks = 0.0;  // interval between repeats, 1/60 s
    };

    virtual ~QVKeyboardService() = default;

    // The user's key repeat delay and interval.
    virtual RepeatThresholds keyRepeatThresholds() const = 0;
    // Routes every key press to the application until released; false if another
    // client keeps the keyboard.
    virtual bool takeKeyboard() = 0;
    virtual void releaseKeyboard() = 0;
};
