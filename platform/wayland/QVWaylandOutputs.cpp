#include "QVWaylandOutputs.h"

#include "xdg-output-unstable-v1-client-protocol.h"

#include <wayland-client.h>

#include <algorithm>
#include <cmath>

struct QVWaylandOutputs::Record {
    QVWaylandOutputs *owner = nullptr;
    quint32 globalName = 0;
    wl_output *output = nullptr;
    zxdg_output_v1 *xdgOutput = nullptr;
    QVWaylandOutput description;
    QPoint geometryPosition; // wl_output's own, which wlroots leaves at 0,0
    std::optional<QPoint> logicalPosition;
    std::optional<QSize> logicalSize;
    bool complete = false;

    ~Record()
    {
        if (xdgOutput)
            zxdg_output_v1_destroy(xdgOutput);
        if (output && wl_output_get_version(output) >= WL_OUTPUT_RELEASE_SINCE_VERSION)
            wl_output_release(output);
        else if (output)
            wl_output_destroy(output);
    }

    // The place in the layout: xdg-output's, else worked out from the mode.
    QRect logical() const
    {
        if (logicalSize)
            return { logicalPosition.value_or(geometryPosition), *logicalSize };
        const bool turned = description.transform % 2 == 1;
        const QSize pixels = turned ? description.pixelSize.transposed() : description.pixelSize;
        const int scale = qMax(1, description.scale);
        return { geometryPosition, QSize(pixels.width() / scale, pixels.height() / scale) };
    }
};

namespace
{

using Record = QVWaylandOutputs::Record;

Record *recordOf(void *data)
{
    return static_cast<Record *>(data);
}

void outputGeometry(void *data, wl_output *, int32_t x, int32_t y, int32_t, int32_t, int32_t, const char *,
    const char *, int32_t transform)
{
    recordOf(data)->geometryPosition = QPoint(x, y);
    recordOf(data)->description.transform = transform;
}

void outputMode(void *data, wl_output *, uint32_t flags, int32_t width, int32_t height, int32_t)
{
    if (flags & WL_OUTPUT_MODE_CURRENT)
        recordOf(data)->description.pixelSize = QSize(width, height);
}

void outputDone(void *data, wl_output *)
{
    recordOf(data)->owner->completed(recordOf(data));
}

void outputScale(void *data, wl_output *, int32_t factor)
{
    recordOf(data)->description.scale = factor;
}

void outputName(void *data, wl_output *, const char *name)
{
    recordOf(data)->description.name = QString::fromUtf8(name);
}

void outputDescription(void *, wl_output *, const char *) { }

const wl_output_listener outputListener = { .geometry = outputGeometry,
    .mode = outputMode,
    .done = outputDone,
    .scale = outputScale,
    .name = outputName,
    .description = outputDescription };

void logicalPosition(void *data, zxdg_output_v1 *, int32_t x, int32_t y)
{
    recordOf(data)->logicalPosition = QPoint(x, y);
}

void logicalSize(void *data, zxdg_output_v1 *, int32_t width, int32_t height)
{
    recordOf(data)->logicalSize = QSize(width, height);
}

// Version 3 of xdg-output leaves this out: wl_output.done completes its changes.
void xdgOutputDone(void *data, zxdg_output_v1 *)
{
    recordOf(data)->owner->completed(recordOf(data));
}

void xdgOutputName(void *data, zxdg_output_v1 *, const char *name)
{
    if (recordOf(data)->description.name.isEmpty())
        recordOf(data)->description.name = QString::fromUtf8(name);
}

void xdgOutputDescription(void *, zxdg_output_v1 *, const char *) { }

const zxdg_output_v1_listener xdgOutputListener = { .logical_position = logicalPosition,
    .logical_size = logicalSize,
    .done = xdgOutputDone,
    .name = xdgOutputName,
    .description = xdgOutputDescription };

// Far enough to leave every output, near enough not to overflow on the way.
int saturatedCoordinate(double coordinate, int origin)
{
    constexpr double farAway = 1 << 24;
    return std::isnan(coordinate) ? origin : int(std::floor(std::clamp(coordinate, -farAway, farAway))) + origin;
}

} // namespace

QVWaylandOutputs::QVWaylandOutputs(QVWaylandConnection &connection)
    : m_connection(connection)
{
}

QVWaylandOutputs::~QVWaylandOutputs() = default;

void QVWaylandOutputs::setManager(zxdg_output_manager_v1 *manager)
{
    m_manager = manager;
    for (const std::unique_ptr<Record> &record : m_records)
        listenToXdgOutput(record.get());
}

void QVWaylandOutputs::listenToXdgOutput(Record *record)
{
    if (!m_manager || record->xdgOutput)
        return;
    record->xdgOutput = zxdg_output_manager_v1_get_xdg_output(m_manager, record->output);
    zxdg_output_v1_add_listener(record->xdgOutput, &xdgOutputListener, record);
}

void QVWaylandOutputs::addOutput(const QVWaylandConnection::Global &global)
{
    auto record = std::make_unique<Record>();
    record->owner = this;
    record->globalName = global.name;
    // Version 4 names the output; version 2 brings done, which completes a change.
    record->output = static_cast<wl_output *>(m_connection.bind(global, &wl_output_interface, 4));
    wl_output_add_listener(record->output, &outputListener, record.get());
    listenToXdgOutput(record.get());
    m_records.push_back(std::move(record));
}

bool QVWaylandOutputs::removeOutput(quint32 globalName)
{
    const auto found = std::find_if(m_records.begin(), m_records.end(),
        [globalName](const std::unique_ptr<Record> &record) { return record->globalName == globalName; });
    if (found == m_records.end())
        return false;
    const bool wasComplete = (*found)->complete;
    m_records.erase(found);
    if (wasComplete && m_changed)
        m_changed();
    return true;
}

void QVWaylandOutputs::completed(Record *record)
{
    record->complete = !record->logical().isEmpty();
    if (m_changed)
        m_changed();
}

QList<const QVWaylandOutputs::Record *> QVWaylandOutputs::completeRecords() const
{
    QList<const Record *> complete;
    for (const std::unique_ptr<Record> &record : m_records) {
        // Version 1 of wl_output sends no done: what it has told is all there is.
        const bool withoutDone
            = wl_output_get_version(record->output) < WL_OUTPUT_DONE_SINCE_VERSION && !record->logical().isEmpty();
        if (record->complete || withoutDone)
            complete.append(record.get());
    }
    return complete;
}

QList<QVWaylandOutput> QVWaylandOutputs::outputs() const
{
    QList<QVWaylandOutput> outputs;
    for (const Record *record : completeRecords()) {
        QVWaylandOutput output = record->description;
        output.logical = record->logical();
        outputs.append(output);
    }
    return outputs;
}

std::optional<QVWaylandOutput> QVWaylandOutputs::describe(wl_output *output) const
{
    for (const Record *record : completeRecords()) {
        if (record->output == output) {
            QVWaylandOutput description = record->description;
            description.logical = record->logical();
            return description;
        }
    }
    return std::nullopt;
}

wl_output *QVWaylandOutputs::outputNamed(const QString &name, QVWaylandOutput *description) const
{
    for (const Record *record : completeRecords()) {
        if (record->description.name == name) {
            if (description)
                *description = *describe(record->output);
            return record->output;
        }
    }
    return nullptr;
}

wl_output *QVWaylandOutputs::outputOfGlobal(quint32 globalName) const
{
    for (const std::unique_ptr<Record> &record : m_records) {
        if (record->globalName == globalName)
            return record->output;
    }
    return nullptr;
}

QVDisplayList QVWaylandOutputs::displays() const
{
    const QList<QVWaylandOutput> all = outputs();
    QVDisplayList displays;
    if (all.isEmpty())
        return displays;
    const QRect primary = all.first().logical;
    for (const QVWaylandOutput &output : all) {
        const QRect &r = output.logical;
        // Window coordinates: y up from the primary's bottom edge.
        const QVRect frame { double(r.x() - primary.x()), double(primary.height() - (r.y() - primary.y()) - r.height()),
            double(r.width()), double(r.height()) };
        displays.append({ frame, frame, output.name });
    }
    return displays;
}

QRect QVWaylandOutputs::layoutBounds() const
{
    QRect bounds;
    for (const QVWaylandOutput &output : outputs())
        bounds = bounds.united(output.logical);
    return bounds;
}

QPoint QVWaylandOutputs::primaryOrigin() const
{
    const QList<const Record *> complete = completeRecords();
    return complete.isEmpty() ? QPoint() : complete.first()->logical().topLeft();
}

QVPoint QVWaylandOutputs::windowPointFromLayout(const QPointF &layout) const
{
    const QList<const Record *> complete = completeRecords();
    const QRect primary = complete.isEmpty() ? QRect() : complete.first()->logical();
    return { layout.x() - primary.x(), primary.height() - (layout.y() - primary.y()) };
}

QPoint QVWaylandOutputs::layoutPixelFromGlobal(const QVPoint &global) const
{
    const QPoint origin = primaryOrigin();
    return nearestPixelOnOutputs(
        QPoint(saturatedCoordinate(global.x, origin.x()), saturatedCoordinate(global.y, origin.y())));
}

QPoint QVWaylandOutputs::nearestPixelOnOutputs(const QPoint &layout) const
{
    QPoint nearest = layout;
    qint64 nearestDistance = -1;
    for (const QVWaylandOutput &output : outputs()) {
        const QRect &r = output.logical;
        const QPoint onOutput(std::clamp(layout.x(), r.left(), r.right()), std::clamp(layout.y(), r.top(), r.bottom()));
        const QPoint offset = onOutput - layout;
        const qint64 distance = qint64(offset.x()) * offset.x() + qint64(offset.y()) * offset.y();
        if (nearestDistance < 0 || distance < nearestDistance) {
            nearest = onOutput;
            nearestDistance = distance;
        }
    }
    return nearest;
}
