#include "QVWaylandPointer.h"

#include "QVWaylandConnection.h"
#include "QVWaylandOutputs.h"
#include "QVWaylandPointerDevice.h"

QVWaylandPointer::QVWaylandPointer(QVWaylandConnection &connection, const QVWaylandOutputs &outputs)
    : m_connection(connection)
    , m_outputs(outputs)
{
}

QVWaylandPointer::~QVWaylandPointer() = default;

void QVWaylandPointer::setDevice(std::unique_ptr<QVWaylandPointerDevice> device)
{
    m_device = std::move(device);
}

bool QVWaylandPointer::moveTo(const QPoint &layoutPixel)
{
    const QRect bounds = m_outputs.layoutBounds();
    if (!m_device || bounds.isEmpty() || !m_connection.isConnected())
        return false;
    m_device->moveTo(layoutPixel, bounds);
    m_connection.flush();
    m_location = layoutPixel;
    return true;
}

bool QVWaylandPointer::button(bool down, bool right)
{
    if (!m_device || !m_connection.isConnected())
        return false;
    m_device->button(down, right);
    m_connection.flush();
    return true;
}

void QVWaylandPointer::outputsChanged()
{
    if (m_location)
        m_location = m_outputs.nearestPixelOnOutputs(*m_location);
}
