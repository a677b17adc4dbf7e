#pragma once

#include "QVEvent.h"

#include <QPointer>

class QKeyEvent;
class QVHotKeyTextView;
class QVPlatform;

// While a hot key field records, every key combination must reach it: the
// keyboard is taken through the platform, so that combinations grabbed by
// Corvane's own hot keys or by other programs come to the field as key downs
// from the window system rather than acting. The application hands every event
// from the platform here first. When the keyboard cannot be taken, the field
// reads Qt's key events instead, and presses of Corvane's own hot keys are turned
// into key downs for it. One field records at a time.
class QVHotKeyRecordingRoute final
{
public:
    explicit QVHotKeyRecordingRoute(QVPlatform &platform);
    ~QVHotKeyRecordingRoute();
    QVHotKeyRecordingRoute(const QVHotKeyRecordingRoute &) = delete;
    QVHotKeyRecordingRoute &operator=(const QVHotKeyRecordingRoute &) = delete;

    // The route the fields use, set up by main (or a test); null: fields read Qt's keys.
    static QVHotKeyRecordingRoute *shared();
    static void setShared(QVHotKeyRecordingRoute *route);

    // True when the event was taken for the recording field and must go no further.
    bool routeEvent(const QVEventRef &event);

    QVHotKeyTextView *recordingField() const;
    bool isKeyboardTaken() const { return m_keyboardTaken; }
    // The field starts recording: another one that records stops, the keyboard is
    // taken. False when it could not be, and the field must read Qt's key events.
    bool beginRecording(QVHotKeyTextView *field);
    // The field stopped recording (or goes away): the keyboard is given back.
    void endRecording(QVHotKeyTextView *field);
    // Gives the keyboard back while the field still records, as before an alert.
    void releaseKeyboard();

    void beep();
    // A key press that Qt delivered to the field, in the form the recording rule reads.
    QVEvent keyDownForKeyEvent(const QKeyEvent &event) const;
    // The same without a platform to ask: plain modifiers, no sides.
    static QVEvent keyDownForKeyEventWithoutPlatform(const QKeyEvent &event);

private:
    void deliverLater(const QVEvent &keyDown);
    bool clickIsOutsideField() const;

    QVPlatform &m_platform;
    QPointer<QVHotKeyTextView> m_field;
    bool m_keyboardTaken = false;
    quint16 m_hotKeyCodeDown = 0; // a press of a shared grab comes once per registration
};
