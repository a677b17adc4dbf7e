#include "QVX11WindowHints.h"

#include "QVX11Connection.h"
#include "QVXcbReply.h"

#include <QList>

#include <algorithm>
#include <cstring>

namespace
{
constexpr uint32_t netWmStateRemove = 0;
constexpr uint32_t netWmStateAdd = 1;
constexpr uint32_t sourceIsPager = 2;
} // namespace

QVX11WindowHints::QVX11WindowHints(QVX11Connection &connection)
    : m_connection(connection)
{
}

void QVX11WindowHints::internAtoms()
{
    if (m_atoms[WmState] != XCB_ATOM_NONE)
        return;
    static const char *const names[AtomCount]
        = { "_NET_WM_STATE", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER", "_NET_ACTIVE_WINDOW" };
    xcb_connection_t *c = m_connection.get();
    xcb_intern_atom_cookie_t cookies[AtomCount];
    for (int index = 0; index < AtomCount; ++index)
        cookies[index] = xcb_intern_atom(c, 0, uint16_t(std::strlen(names[index])), names[index]);
    for (int index = 0; index < AtomCount; ++index)
        if (QVXcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(c, cookies[index], nullptr)); reply)
            m_atoms[index] = reply->atom;
}

bool QVX11WindowHints::isMapped(xcb_window_t window) const
{
    xcb_connection_t *c = m_connection.get();
    QVXcbReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, window), nullptr));
    return attributes && attributes->map_state != XCB_MAP_STATE_UNMAPPED;
}

void QVX11WindowHints::setSkipsTaskbar(xcb_window_t window, bool skips)
{
    internAtoms();
    if (!isMapped(window)) {
        changeStateOfUnmapped(window, skips);
    } else {
        // A mapped window's state belongs to the window manager: ask it.
        const uint32_t action = skips ? netWmStateAdd : netWmStateRemove;
        sendToRoot(window, m_atoms[WmState], { action, m_atoms[SkipTaskbar], m_atoms[SkipPager], sourceIsPager, 0 });
    }
    // Qt reads the state on its own connection just before it maps the window.
    m_connection.sync();
}

void QVX11WindowHints::changeStateOfUnmapped(xcb_window_t window, bool skips)
{
    xcb_connection_t *c = m_connection.get();
    QVXcbReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(c, xcb_get_property(c, 0, window, m_atoms[WmState], XCB_ATOM_ATOM, 0, 64), nullptr));
    QList<xcb_atom_t> states;
    if (reply && reply->format == 32 && reply->type == XCB_ATOM_ATOM) {
        const auto *values = static_cast<const xcb_atom_t *>(xcb_get_property_value(reply.get()));
        states = QList<xcb_atom_t>(values, values + xcb_get_property_value_length(reply.get()) / 4);
    }
    states.removeAll(m_atoms[SkipTaskbar]);
    states.removeAll(m_atoms[SkipPager]);
    if (skips)
        states << m_atoms[SkipTaskbar] << m_atoms[SkipPager];
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, m_atoms[WmState], XCB_ATOM_ATOM, 32, uint32_t(states.size()),
        states.constData());
}

void QVX11WindowHints::activate(xcb_window_t window)
{
    internAtoms();
    // Source "pager": the request comes from the user, so focus-stealing prevention lets it through.
    sendToRoot(window, m_atoms[ActiveWindow], { sourceIsPager, XCB_CURRENT_TIME, 0, 0, 0 });
    m_connection.flush();
}

void QVX11WindowHints::sendToRoot(xcb_window_t window, xcb_atom_t type, const uint32_t (&data)[5])
{
    xcb_client_message_event_t message {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    std::copy(std::begin(data), std::end(data), message.data.data32);
    xcb_send_event(m_connection.get(), 0, m_connection.root(),
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
        reinterpret_cast<const char *>(&message));
}
