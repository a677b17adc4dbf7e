#include "QVWaylandLayerSurface.h"

#include "QVWaylandConnection.h"
#include "wlr-layer-shell-unstable-v1-client-protocol.h"

#include <QRegion>

#include <wayland-client.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>

namespace
{

constexpr quint32 overlayLayer = 3;
constexpr quint32 allEdges = 1 | 2 | 4 | 8; // top, bottom, left, right
constexpr quint32 exclusiveKeyboard = 1;
constexpr size_t maximumBuffers = 3; // the compositor may hold two while a third is drawn

} // namespace

// One shared-memory picture the compositor may read until it releases it.
struct QVWaylandLayerSurface::Buffer {
    QVWaylandLayerSurface *owner = nullptr;
    wl_buffer *buffer = nullptr;
    uchar *pixels = nullptr;
    size_t bytes = 0;
    QSize size;
    bool busy = false;

    ~Buffer()
    {
        if (buffer)
            wl_buffer_destroy(buffer);
        if (pixels)
            munmap(pixels, bytes);
    }
};

namespace
{

void bufferReleased(void *data, wl_buffer *)
{
    auto *buffer = static_cast<QVWaylandLayerSurface::Buffer *>(data);
    buffer->owner->released(buffer);
}

const wl_buffer_listener bufferListener = { .release = bufferReleased };

void layerConfigured(void *data, zwlr_layer_surface_v1 *, uint32_t serial, uint32_t width, uint32_t height)
{
    static_cast<QVWaylandLayerSurface *>(data)->configured(serial, QSize(int(width), int(height)));
}

void layerClosed(void *data, zwlr_layer_surface_v1 *)
{
    static_cast<QVWaylandLayerSurface *>(data)->closedByCompositor();
}

const zwlr_layer_surface_v1_listener layerListener = { .configure = layerConfigured, .closed = layerClosed };

} // namespace

QVWaylandLayerSurface::QVWaylandLayerSurface(QVWaylandConnection &connection, const Shell &shell, wl_output *output,
    const QSize &logicalSize, int scale, bool takesKeyboard)
    : m_connection(connection)
    , m_shell(shell)
    , m_output(output)
    , m_logicalSize(logicalSize)
    , m_scale(qMax(1, scale))
    , m_takesKeyboard(takesKeyboard)
{
}

QVWaylandLayerSurface::~QVWaylandLayerSurface()
{
    setVisible(false);
    if (m_destroyed)
        m_destroyed();
}

void QVWaylandLayerSurface::setPicture(const QImage &picture, const QRegion &damage)
{
    m_picture = picture;
    present(damage);
}

void QVWaylandLayerSurface::outputGone()
{
    const bool wasVisible = isVisible();
    setVisible(false);
    m_output = nullptr;
    if (wasVisible && m_closed)
        m_closed();
}

void QVWaylandLayerSurface::setVisible(bool visible)
{
    if (visible == isVisible() || (visible && !m_output))
        return;
    if (!visible) {
        zwlr_layer_surface_v1_destroy(m_layerSurface);
        wl_surface_destroy(m_surface);
        m_layerSurface = nullptr;
        m_surface = nullptr;
        m_configured = false;
        m_buffers.clear(); // an idle Corvane keeps no display's worth of pixels
        m_connection.flush();
        return;
    }
    m_surface = wl_compositor_create_surface(m_shell.compositor);
    wl_surface_set_buffer_scale(m_surface, m_scale);
    m_layerSurface = zwlr_layer_shell_v1_get_layer_surface(
        m_shell.layerShell, m_surface, m_output, overlayLayer, "corvane-overlay");
    zwlr_layer_surface_v1_add_listener(m_layerSurface, &layerListener, this);
    // The whole output, over panels too, with the keyboard when asked.
    zwlr_layer_surface_v1_set_anchor(m_layerSurface, allEdges);
    zwlr_layer_surface_v1_set_exclusive_zone(m_layerSurface, -1);
    zwlr_layer_surface_v1_set_keyboard_interactivity(m_layerSurface, m_takesKeyboard ? exclusiveKeyboard : 0);
    wl_surface_commit(m_surface);
    m_connection.flush();
}

void QVWaylandLayerSurface::configured(quint32 serial, const QSize &size)
{
    zwlr_layer_surface_v1_ack_configure(m_layerSurface, serial);
    if (!size.isEmpty())
        m_logicalSize = size;
    m_configured = true;
    present(QRegion());
}

void QVWaylandLayerSurface::closedByCompositor()
{
    const bool wasVisible = isVisible();
    setVisible(false);
    if (wasVisible && m_closed)
        m_closed();
}

void QVWaylandLayerSurface::released(Buffer *buffer)
{
    buffer->busy = false;
}

QVWaylandLayerSurface::Buffer *QVWaylandLayerSurface::freeBuffer(const QSize &size)
{
    for (const std::unique_ptr<Buffer> &buffer : m_buffers) {
        if (!buffer->busy && buffer->size == size)
            return buffer.get();
    }
    // Buffers of another size are no use any more.
    std::erase_if(m_buffers, [&size](const std::unique_ptr<Buffer> &buffer) { return buffer->size != size; });
    if (m_buffers.size() >= maximumBuffers)
        return nullptr;
    auto buffer = std::make_unique<Buffer>();
    buffer->owner = this;
    buffer->size = size;
    buffer->bytes = size_t(size.width()) * size_t(size.height()) * 4;
    const int fd = memfd_create("corvane-overlay", MFD_CLOEXEC);
    if (fd < 0 || ftruncate(fd, off_t(buffer->bytes)) != 0) {
        if (fd >= 0)
            close(fd);
        return nullptr;
    }
    void *pixels = mmap(nullptr, buffer->bytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    if (pixels == MAP_FAILED) {
        close(fd);
        return nullptr;
    }
    buffer->pixels = static_cast<uchar *>(pixels);
    wl_shm_pool *pool = wl_shm_create_pool(m_shell.shm, fd, int(buffer->bytes));
    // ARGB8888 in little-endian words is QImage's premultiplied ARGB32.
    buffer->buffer
        = wl_shm_pool_create_buffer(pool, 0, size.width(), size.height(), size.width() * 4, WL_SHM_FORMAT_ARGB8888);
    wl_shm_pool_destroy(pool);
    close(fd);
    wl_buffer_add_listener(buffer->buffer, &bufferListener, buffer.get());
    m_buffers.push_back(std::move(buffer));
    return m_buffers.back().get();
}

void QVWaylandLayerSurface::present(const QRegion &damage)
{
    if (!m_configured || m_picture.isNull() || !m_connection.isConnected())
        return;
    const QSize size = m_logicalSize * m_scale;
    Buffer *buffer = freeBuffer(size);
    if (!buffer)
        return; // the compositor still holds every buffer: the next picture comes later
    const QImage picture = m_picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const int rowBytes = qMin(picture.width(), size.width()) * 4;
    std::memset(buffer->pixels, 0, buffer->bytes);
    for (int row = 0; row < qMin(picture.height(), size.height()); ++row)
        std::memcpy(buffer->pixels + size_t(row) * size.width() * 4, picture.constScanLine(row), size_t(rowBytes));
    wl_surface_attach(m_surface, buffer->buffer, 0, 0);
    const QRegion changed = damage.isEmpty() ? QRegion(QRect(QPoint(0, 0), size)) : damage;
    const bool inBufferPixels = wl_surface_get_version(m_surface) >= WL_SURFACE_DAMAGE_BUFFER_SINCE_VERSION;
    for (const QRect &rect : changed) {
        if (inBufferPixels) {
            wl_surface_damage_buffer(m_surface, rect.x(), rect.y(), rect.width(), rect.height());
            continue;
        }
        // Older compositors take damage in surface units: round outwards.
        const QRect units(rect.topLeft() / m_scale, (rect.bottomRight() + QPoint(m_scale, m_scale)) / m_scale);
        wl_surface_damage(m_surface, units.x(), units.y(), units.width(), units.height());
    }
    buffer->busy = true;
    wl_surface_commit(m_surface);
    m_connection.flush();
}
