#include "QVTestXClient.h"

#include <QDeadlineTimer>
#include <QRect>
#include <QThread>

#include <cstdlib>
#include <memory>

#include <xcb/shape.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>

namespace
{

template<typename T> using Reply = std::unique_ptr<T, decltype(&std::free)>;

template<typename T> Reply<T> reply(T *pointer)
{
    return Reply<T>(pointer, &std::free);
}

} // namespace

QVTestXClient::QVTestXClient(const QString &displayName)
{
    m_connection = xcb_connect(displayName.toLatin1().constData(), nullptr);
    if (xcb_connection_has_error(m_connection))
        return;
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
}

QVTestXClient::~QVTestXClient()
{
    if (m_connection)
        xcb_disconnect(m_connection);
}

void QVTestXClient::sync()
{
    reply(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

void QVTestXClient::keyDown(xcb_keycode_t key)
{
    xcb_test_fake_input(m_connection, XCB_KEY_PRESS, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    sync();
}

void QVTestXClient::keyUp(xcb_keycode_t key)
{
    xcb_test_fake_input(m_connection, XCB_KEY_RELEASE, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    sync();
}

void QVTestXClient::tap(xcb_keycode_t key, const QList<xcb_keycode_t> &modifiers)
{
    for (const xcb_keycode_t modifier : modifiers)
        keyDown(modifier);
    keyDown(key);
    keyUp(key);
    for (auto it = modifiers.crbegin(); it != modifiers.crend(); ++it)
        keyUp(*it);
}

xcb_keycode_t QVTestXClient::keyCodeForSymbol(xcb_keysym_t symbol)
{
    xcb_key_symbols_t *symbols = xcb_key_symbols_alloc(m_connection);
    xcb_keycode_t *codes = xcb_key_symbols_get_keycode(symbols, symbol);
    const xcb_keycode_t code = codes ? codes[0] : 0;
    std::free(codes);
    xcb_key_symbols_free(symbols);
    return code == XCB_NO_SYMBOL ? 0 : code;
}

void QVTestXClient::tapQuickly(xcb_keycode_t key)
{
    xcb_test_fake_input(m_connection, XCB_KEY_PRESS, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_test_fake_input(m_connection, XCB_KEY_RELEASE, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_flush(m_connection);
}

QPoint QVTestXClient::pointer()
{
    auto pointer
        = reply(xcb_query_pointer_reply(m_connection, xcb_query_pointer(m_connection, m_screen->root), nullptr));
    return pointer ? QPoint(pointer->root_x, pointer->root_y) : QPoint(-1, -1);
}

void QVTestXClient::movePointer(const QPoint &root)
{
    xcb_warp_pointer(m_connection, XCB_NONE, m_screen->root, 0, 0, 0, 0, int16_t(root.x()), int16_t(root.y()));
    sync();
}

QList<xcb_keycode_t> QVTestXClient::keysDown()
{
    QList<xcb_keycode_t> down;
    auto keymap = reply(xcb_query_keymap_reply(m_connection, xcb_query_keymap(m_connection), nullptr));
    if (!keymap)
        return down;
    for (int key = 8; key < 256; ++key)
        if (keymap->keys[key / 8] & (1 << (key % 8)))
            down.append(xcb_keycode_t(key));
    return down;
}

quint16 QVTestXClient::modifierState()
{
    auto pointer
        = reply(xcb_query_pointer_reply(m_connection, xcb_query_pointer(m_connection, m_screen->root), nullptr));
    return pointer ? pointer->mask : 0;
}

void QVTestXClient::openRecordingWindow(const QRect &root)
{
    m_window = xcb_generate_id(m_connection);
    const uint32_t values[] = { 1, XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE };
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, m_screen->root, int16_t(root.x()),
        int16_t(root.y()), uint16_t(root.width()), uint16_t(root.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
        m_screen->root_visual, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    xcb_map_window(m_connection, m_window);
    sync();
}

std::optional<QVTestXClient::ButtonEvent> QVTestXClient::nextButtonEvent(int timeoutMilliseconds)
{
    QDeadlineTimer deadline(timeoutMilliseconds);
    do {
        while (xcb_generic_event_t *event = xcb_poll_for_event(m_connection)) {
            const auto owned = reply(event);
            const uint8_t type = event->response_type & 0x7f;
            if (type != XCB_BUTTON_PRESS && type != XCB_BUTTON_RELEASE)
                continue;
            const auto *button = reinterpret_cast<const xcb_button_press_event_t *>(event);
            return ButtonEvent { type == XCB_BUTTON_PRESS, button->detail, button->state };
        }
        QThread::msleep(5);
    } while (!deadline.hasExpired());
    return std::nullopt;
}

bool QVTestXClient::grabKey(xcb_keycode_t key, quint16 modifiers)
{
    auto error = reply(xcb_request_check(m_connection,
        xcb_grab_key_checked(
            m_connection, 1, m_screen->root, modifiers, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
    return !error;
}

bool QVTestXClient::receivedKeyPress(xcb_keycode_t key, int timeoutMilliseconds)
{
    QDeadlineTimer deadline(timeoutMilliseconds);
    do {
        while (xcb_generic_event_t *event = xcb_poll_for_event(m_connection)) {
            const auto owned = reply(event);
            if ((event->response_type & 0x7f) == XCB_KEY_PRESS
                && reinterpret_cast<const xcb_key_press_event_t *>(event)->detail == key)
                return true;
        }
        QThread::msleep(5);
    } while (!deadline.hasExpired());
    return false;
}

xcb_window_t QVTestXClient::inputFocus()
{
    auto focus = reply(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    return focus ? focus->focus : XCB_NONE;
}

bool QVTestXClient::grabKeyboard()
{
    auto grab = reply(xcb_grab_keyboard_reply(m_connection,
        xcb_grab_keyboard(m_connection, 0, m_screen->root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
        nullptr));
    return grab && grab->status == XCB_GRAB_STATUS_SUCCESS;
}

void QVTestXClient::ungrabKeyboard()
{
    xcb_ungrab_keyboard(m_connection, XCB_CURRENT_TIME);
    sync();
}

xcb_window_t QVTestXClient::viewableWindowAt(const QRect &root)
{
    auto tree = reply(xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, m_screen->root), nullptr));
    if (!tree)
        return XCB_NONE;
    const xcb_window_t *children = xcb_query_tree_children(tree.get());
    for (int index = 0; index < xcb_query_tree_children_length(tree.get()); ++index) {
        auto attributes = reply(xcb_get_window_attributes_reply(
            m_connection, xcb_get_window_attributes(m_connection, children[index]), nullptr));
        auto geometry
            = reply(xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, children[index]), nullptr));
        if (attributes && geometry && attributes->map_state == XCB_MAP_STATE_VIEWABLE
            && QRect(geometry->x, geometry->y, geometry->width, geometry->height) == root)
            return children[index];
    }
    return XCB_NONE;
}

bool QVTestXClient::isShaped(xcb_window_t window)
{
    auto extents
        = reply(xcb_shape_query_extents_reply(m_connection, xcb_shape_query_extents(m_connection, window), nullptr));
    return extents && extents->bounding_shaped;
}

void QVTestXClient::click(int button)
{
    xcb_test_fake_input(m_connection, XCB_BUTTON_PRESS, uint8_t(button), XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_test_fake_input(m_connection, XCB_BUTTON_RELEASE, uint8_t(button), XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    sync();
}

void QVTestXClient::paintDesktop(QRgb color)
{
    // The root visual is 24-bit TrueColor on the test servers: the pixel is the RGB value.
    const uint32_t pixel = color & 0xffffff;
    if (m_desktop == XCB_NONE) {
        m_desktop = xcb_generate_id(m_connection);
        const uint32_t values[] = { pixel, 1 };
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_desktop, m_screen->root, 0, 0,
            m_screen->width_in_pixels, m_screen->height_in_pixels, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
            m_screen->root_visual, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
        xcb_map_window(m_connection, m_desktop);
    } else {
        xcb_change_window_attributes(m_connection, m_desktop, XCB_CW_BACK_PIXEL, &pixel);
        xcb_clear_area(m_connection, 0, m_desktop, 0, 0, 0, 0);
    }
    sync();
}

bool QVTestXClient::compositingManagerRunning()
{
    const QByteArray name = QByteArrayLiteral("_NET_WM_CM_S0");
    auto atom = reply(xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, 0, uint16_t(name.size()), name.constData()), nullptr));
    if (!atom)
        return false;
    auto owner = reply(
        xcb_get_selection_owner_reply(m_connection, xcb_get_selection_owner(m_connection, atom->atom), nullptr));
    return owner && owner->owner != XCB_NONE;
}

QImage QVTestXClient::screenshot(const QRect &root)
{
    auto image = reply(xcb_get_image_reply(m_connection,
        xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen->root, int16_t(root.x()), int16_t(root.y()),
            uint16_t(root.width()), uint16_t(root.height()), ~0u),
        nullptr));
    if (!image || image->depth != 24)
        return {};
    // 32 bits per pixel, BGRX in memory: Qt's RGB32 on a little-endian machine.
    const QImage view(
        xcb_get_image_data(image.get()), root.width(), root.height(), root.width() * 4, QImage::Format_RGB32);
    return view.copy();
}

xcb_atom_t QVTestXClient::atom(const char *name)
{
    auto interned = reply(
        xcb_intern_atom_reply(m_connection, xcb_intern_atom(m_connection, 0, uint16_t(qstrlen(name)), name), nullptr));
    return interned ? interned->atom : XCB_ATOM_NONE;
}

QString QVTestXClient::atomName(xcb_atom_t atom)
{
    auto named = reply(xcb_get_atom_name_reply(m_connection, xcb_get_atom_name(m_connection, atom), nullptr));
    return named ? QString::fromLatin1(xcb_get_atom_name_name(named.get()), xcb_get_atom_name_name_length(named.get()))
                 : QString();
}

QList<QVTestXClient::TopLevel> QVTestXClient::topLevelWindows()
{
    QList<TopLevel> windows;
    auto tree = reply(xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, m_screen->root), nullptr));
    if (!tree)
        return windows;
    const xcb_window_t *children = xcb_query_tree_children(tree.get());
    const xcb_atom_t wmName = atom("_NET_WM_NAME"), utf8 = atom("UTF8_STRING"), wmPid = atom("_NET_WM_PID"),
                     wmState = atom("_NET_WM_STATE");
    for (int index = 0; index < xcb_query_tree_children_length(tree.get()); ++index) {
        TopLevel top;
        top.window = children[index];
        auto attributes = reply(
            xcb_get_window_attributes_reply(m_connection, xcb_get_window_attributes(m_connection, top.window), nullptr));
        if (!attributes || attributes->override_redirect)
            continue;
        top.viewable = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
        auto name = reply(xcb_get_property_reply(
            m_connection, xcb_get_property(m_connection, 0, top.window, wmName, utf8, 0, 256), nullptr));
        if (name)
            top.title = QString::fromUtf8(static_cast<const char *>(xcb_get_property_value(name.get())),
                xcb_get_property_value_length(name.get()));
        auto pid = reply(xcb_get_property_reply(
            m_connection, xcb_get_property(m_connection, 0, top.window, wmPid, XCB_ATOM_CARDINAL, 0, 1), nullptr));
        if (pid && xcb_get_property_value_length(pid.get()) == 4)
            top.pid = *static_cast<const quint32 *>(xcb_get_property_value(pid.get()));
        auto states = reply(xcb_get_property_reply(
            m_connection, xcb_get_property(m_connection, 0, top.window, wmState, XCB_ATOM_ATOM, 0, 64), nullptr));
        if (states) {
            const auto *values = static_cast<const xcb_atom_t *>(xcb_get_property_value(states.get()));
            for (int state = 0; state < xcb_get_property_value_length(states.get()) / 4; ++state)
                top.states.append(atomName(values[state]));
        }
        auto geometry = reply(
            xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, top.window), nullptr));
        if (geometry)
            top.geometry = QRect(geometry->x, geometry->y, geometry->width, geometry->height);
        windows.append(top);
    }
    return windows;
}

std::optional<QVTestXClient::TopLevel> QVTestXClient::viewableTopLevel(const QString &title)
{
    for (const TopLevel &top : topLevelWindows())
        if (top.viewable && top.title == title)
            return top;
    return std::nullopt;
}

void QVTestXClient::closeWindow(xcb_window_t window)
{
    xcb_client_message_event_t message {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom("WM_PROTOCOLS");
    message.data.data32[0] = atom("WM_DELETE_WINDOW");
    message.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(m_connection, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&message));
    sync();
}
