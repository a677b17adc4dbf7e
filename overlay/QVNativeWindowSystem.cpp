#include "QVNativeWindowSystem.h"

#include <QGuiApplication>
#include <QRegion>
#include <QWidget>

#include <vector>

#include <xcb/shape.h>
#include <xcb/xcb.h>

namespace
{

xcb_connection_t *qtConnection()
{
    auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

} // namespace

void QVSetWindowShape(QWidget &window, const QRegion *devicePixels)
{
    xcb_connection_t *connection = qtConnection();
    if (!connection)
        return; // no X server to shape for (Qt's offscreen platform in tests)
    // Through Qt's own connection, so that the window exists by the time the shape arrives.
    const auto id = xcb_window_t(window.winId());
    if (!devicePixels) {
        xcb_shape_mask(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, id, 0, 0, XCB_NONE);
    } else {
        std::vector<xcb_rectangle_t> rectangles;
        rectangles.reserve(size_t(devicePixels->rectCount()));
        for (const QRect &rect : *devicePixels)
            rectangles.push_back(
                { int16_t(rect.x()), int16_t(rect.y()), uint16_t(rect.width()), uint16_t(rect.height()) });
        xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_UNSORTED, id, 0, 0,
            uint32_t(rectangles.size()), rectangles.data());
    }
    xcb_flush(connection);
}

void QVFlushWindowSystem()
{
    if (xcb_connection_t *connection = qtConnection())
        xcb_flush(connection);
}
