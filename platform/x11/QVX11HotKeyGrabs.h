#pragma once

#include "QVEvent.h"
#include "QVHotKeyService.h"

#include <QHash>
#include <QList>
#include <QMap>
#include <QSet>

#include <functional>

#include <xcb/xcb.h>

class QVX11Connection;
class QVX11Keyboard;
class QVX11Displays;

// Passive key grabs on the root window standing for registered hot keys. Each
// registration grabs its combination once for every state of the lock modifiers
// that must not matter. Two registrations may share a grab (they differ only in
// the side of a modifier); a press then reports both and the caller picks.
class QVX11HotKeyGrabs final
{
public:
    using EventSink = std::function<void(const QVEventRef &)>;

    QVX11HotKeyGrabs(QVX11Connection &connection, QVX11Keyboard &keyboard, QVX11Displays &displays);

    std::optional<QVHotKeyService::Handle> registerHotKey(const QVHotKeyRegistration &registration, QString *reason);
    void unregisterHotKey(QVHotKeyService::Handle handle);
    // Grabs everything again, for a new keyboard mapping or NumLock mask.
    void regrabAll();

    // Turns a key press or release on a grabbed combination into hot key events.
    // False when the event is none of ours.
    bool handleKeyEvent(const xcb_key_press_event_t *event, bool press, const EventSink &sink);
    // The release of a hot key's key seen without the grab (Corvane let go of the
    // grab, or another client took the keyboard): it ends the hot key all the same.
    bool handleUngrabbedRelease(xcb_keycode_t keyCode, const EventSink &sink);

private:
    struct Registration {
        QVHotKeyRegistration request; // kept to work out the variants again
        QList<quint16> modifierVariants;
        xcb_keycode_t keyCode() const { return xcb_keycode_t(request.keyCode); }
    };
    using GrabKey = QPair<xcb_keycode_t, quint16>;

    QList<quint16> modifierVariants(const QVHotKeyRegistration &registration) const;
    static QList<GrabKey> grabKeys(const Registration &entry);
    QString describe(const QVHotKeyRegistration &registration) const;
    QList<GrabKey> grab(const QList<GrabKey> &keys, bool *refused);
    void ungrab(const QList<GrabKey> &keys);
    QList<QVHotKeyService::Handle> handlesFor(xcb_keycode_t keyCode, quint16 state) const;
    void deliver(xcb_keycode_t keyCode, const QList<QVHotKeyService::Handle> &handles, bool press, quint64 flags,
        const QVPoint &location, const EventSink &sink);

    QVX11Connection &m_connection;
    QVX11Keyboard &m_keyboard;
    QVX11Displays &m_displays;
    QHash<QVHotKeyService::Handle, Registration> m_registrations;
    QMap<GrabKey, QList<QVHotKeyService::Handle>> m_grabs;
    QHash<xcb_keycode_t, QList<QVHotKeyService::Handle>> m_keysDown;
    QVHotKeyService::Handle m_nextHandle = 1;
};
