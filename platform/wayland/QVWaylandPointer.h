#pragma once

#include <QPoint>

#include <memory>
#include <optional>

class QVWaylandConnection;
class QVWaylandOutputs;
class QVWaylandPointerDevice;

// Corvane's model of where the pointer is, and the device that moves it: Wayland
// tells no client the global position, so the model is the last place Corvane put
// the pointer, or what one of its surfaces learnt since.
class QVWaylandPointer final
{
public:
    QVWaylandPointer(QVWaylandConnection &connection, const QVWaylandOutputs &outputs);
    ~QVWaylandPointer();
    QVWaylandPointer(const QVWaylandPointer &) = delete;
    QVWaylandPointer &operator=(const QVWaylandPointer &) = delete;

    void setDevice(std::unique_ptr<QVWaylandPointerDevice> device);
    bool isAvailable() const { return m_device != nullptr; }

    // Puts the pointer on a pixel of the layout (logical units, y down).
    bool moveTo(const QPoint &layoutPixel);
    // BTN_LEFT or BTN_RIGHT pressed or released where the pointer is.
    bool button(bool down, bool rightButton);

    // The layout pixel the model holds, nothing before Corvane first moved the pointer.
    std::optional<QPoint> location() const { return m_location; }
    // What a surface of Corvane's saw: the real position, to take over.
    void setObservedLocation(const QPoint &layoutPixel) { m_location = layoutPixel; }
    // The outputs changed: a pointer left beside every output is moved onto the
    // nearest one by the compositor, and so in the model.
    void outputsChanged();

private:
    QVWaylandConnection &m_connection;
    const QVWaylandOutputs &m_outputs;
    std::unique_ptr<QVWaylandPointerDevice> m_device;
    std::optional<QPoint> m_location;
};
