#pragma once

#include "QVPlatform.h"

#include <QList>
#include <QMap>

// Displays with the given frames (window coordinates, primary first).
inline QVDisplayList QVFakeDisplays(const QList<QVRect> &frames)
{
    QVDisplayList displays;
    for (const QVRect &frame : frames)
        displays.append({ frame, frame, {} });
    return displays;
}

// A scripted window system: displays, pointer and key repeat rate as the test sets
// them; posted moves and hot key registrations recorded for the test to read.
class QVFakePlatform final : public QVPlatform
{
public:
    QVDisplayList displays() const override { return displayList; }
    QVPoint mouseLocation() const override { return ++pointerReads, pointer; }
    bool isMouseLocationApproximate() const override { return pointerApproximate; }
    bool postMouseMoved(const QVPoint &globalPoint) override { return postedMoves.append(globalPoint), true; }
    bool postMouseButton(bool down, bool right, bool) override { return buttons.append({ down, right }), true; }
    // Handles count up from 1; combinations in refused are turned down.
    std::optional<Handle> registerHotKey(const QVHotKeyRegistration &registration, QString *reason) override
    {
        registrationRequests.append(registration);
        if (refused.contains(qMakePair(registration.keyCode, registration.carbonModifiers))) {
            if (reason)
                *reason = QStringLiteral("held by another client");
            return std::nullopt;
        }
        activeHotKeys.insert(++m_lastHandle, registration);
        return m_lastHandle;
    }
    void unregisterHotKey(Handle handle) override { activeHotKeys.remove(handle); }
    bool grantsHotKeys() const override { return hotKeysGranted; }
    RepeatThresholds keyRepeatThresholds() const override { return thresholds; }
    bool takeKeyboard() override { return keyboardTaken = keyboardAvailable; }
    void releaseKeyboard() override { keyboardTaken = false; }
    void setEventHandler(EventHandler) override { }
    void beep() override { ++beeps; }
    QString charactersIgnoringModifiers(quint16 keyCode) const override { return keyCharacters.value(keyCode); }
    bool isCompositingManagerRunning() const override { return true; }
    void setWindowListedInTaskbar(quintptr window, bool listed) override { listedWindows[window] = listed; }
    void activateWindow(quintptr window) override { activatedWindows.append(window); }

    QVDisplayList displayList;
    QVPoint pointer;
    mutable int pointerReads = 0; // each a round trip on X
    bool pointerApproximate = false; // a guess, as on Wayland
    RepeatThresholds thresholds { 15, 2 };
    QList<QPair<quint16, quint32>> refused; // key code, carbon modifiers
    QList<QVPoint> postedMoves; // global coordinates
    QList<QPair<bool, bool>> buttons; // (down, right button), in order
    QList<QVHotKeyRegistration> registrationRequests; // refused ones included
    QMap<Handle, QVHotKeyRegistration> activeHotKeys;
    bool hotKeysGranted = true;
    QMap<quintptr, bool> listedWindows;
    QList<quintptr> activatedWindows;
    bool keyboardAvailable = true; // false: another client keeps the keyboard
    bool keyboardTaken = false;
    int beeps = 0;
    QMap<quint16, QString> keyCharacters; // what each key types without modifiers

private:
    Handle m_lastHandle = 0;
};
