#pragma once

#include "QVOverlaySurface.h"

#include <QImage>
#include <QSize>

#include <functional>
#include <memory>
#include <vector>

class QVWaylandConnection;
struct wl_buffer;
struct wl_compositor;
struct wl_output;
struct wl_shm;
struct wl_surface;
struct zwlr_layer_shell_v1;
struct zwlr_layer_surface_v1;

// An overlay surface on a wlroots compositor: a layer-shell surface on the overlay
// layer that covers its output, drawn by Corvane into shared memory of its own
// connection. The role is made when it shows and dropped when it hides, so that a
// hidden overlay holds no buffers and gives the keyboard back.
class QVWaylandLayerSurface final : public QVOverlaySurface
{
public:
    struct Shell {
        wl_compositor *compositor = nullptr;
        wl_shm *shm = nullptr;
        zwlr_layer_shell_v1 *layerShell = nullptr;
    };

    // logicalSize: the output's size in the layout; scale: its whole-number scale.
    QVWaylandLayerSurface(QVWaylandConnection &connection, const Shell &shell, wl_output *output,
        const QSize &logicalSize, int scale, bool takesKeyboard);
    ~QVWaylandLayerSurface() override;
    QVWaylandLayerSurface(const QVWaylandLayerSurface &) = delete;
    QVWaylandLayerSurface &operator=(const QVWaylandLayerSurface &) = delete;

    QSize pixelSize() const override { return m_logicalSize * m_scale; }
    int scale() const override { return m_scale; }
    void setPicture(const QImage &picture, const QRegion &damage) override;
    void setVisible(bool visible) override;
    bool isVisible() const override { return m_layerSurface != nullptr; }

    bool takesKeyboard() const { return m_takesKeyboard; }
    // The wl_surface while shown: input on it is input on the overlay.
    wl_surface *surface() const { return m_surface; }
    void setClosedListener(std::function<void()> listener) override { m_closed = std::move(listener); }
    wl_output *output() const { return m_output; }
    void setDestroyedListener(std::function<void()> listener) { m_destroyed = std::move(listener); }
    // Its output is gone: it hides and cannot show again; tells the closed listener
    // when it was shown.
    void outputGone();

    // Listener state.
    void configured(quint32 serial, const QSize &size);
    void closedByCompositor();
    struct Buffer;
    void released(Buffer *buffer);

private:
    Buffer *freeBuffer(const QSize &size);
    void present(const QRegion &damage);

    QVWaylandConnection &m_connection;
    Shell m_shell;
    wl_output *m_output;
    QSize m_logicalSize;
    int m_scale;
    bool m_takesKeyboard;
    wl_surface *m_surface = nullptr;
    zwlr_layer_surface_v1 *m_layerSurface = nullptr;
    bool m_configured = false;
    QImage m_picture;
    std::vector<std::unique_ptr<Buffer>> m_buffers;
    std::function<void()> m_closed;
    std::function<void()> m_destroyed;
};
