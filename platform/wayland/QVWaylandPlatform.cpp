#include "QVWaylandPlatform.h"

#include "QVLog.h"
#include "QVWaylandConnection.h"
#include "QVWaylandKeyboard.h"
#include "QVWaylandOutputs.h"
#include "QVWaylandPointer.h"
#include "virtual-keyboard-unstable-v1-client-protocol.h"
#include "wlr-virtual-pointer-unstable-v1-client-protocol.h"
#include "xdg-output-unstable-v1-client-protocol.h"

#include <wayland-client.h>

// The compositor's single objects that Corvane binds, released before the connection goes.
struct QVWaylandGlobals {
    wl_seat *seat = nullptr;
    zxdg_output_manager_v1 *outputManager = nullptr;
    zwlr_virtual_pointer_manager_v1 *pointerManager = nullptr;
    zwp_virtual_keyboard_manager_v1 *keyboardManager = nullptr;

    ~QVWaylandGlobals()
    {
        if (keyboardManager)
            zwp_virtual_keyboard_manager_v1_destroy(keyboardManager);
        if (pointerManager)
            zwlr_virtual_pointer_manager_v1_destroy(pointerManager);
        if (outputManager)
            zxdg_output_manager_v1_destroy(outputManager);
        if (seat && wl_seat_get_version(seat) >= WL_SEAT_RELEASE_SINCE_VERSION)
            wl_seat_release(seat);
        else if (seat)
            wl_seat_destroy(seat);
    }
};

std::unique_ptr<QVWaylandPlatform> QVWaylandPlatform::open(QString *error, const QString &socketName)
{
    std::unique_ptr<QVWaylandConnection> connection = QVWaylandConnection::open(socketName, error);
    if (!connection)
        return nullptr;
    std::unique_ptr<QVWaylandPlatform> platform(new QVWaylandPlatform(std::move(connection)));
    if (!platform->initialize(error))
        return nullptr;
    return platform;
}

QVWaylandPlatform::QVWaylandPlatform(std::unique_ptr<QVWaylandConnection> connection)
    : m_connection(std::move(connection))
    , m_globals(std::make_unique<QVWaylandGlobals>())
    , m_outputs(std::make_unique<QVWaylandOutputs>(*m_connection))
    , m_pointer(std::make_unique<QVWaylandPointer>(*m_connection, *m_outputs))
    , m_keyboard(std::make_unique<QVWaylandKeyboard>(*m_connection))
{
}

QVWaylandPlatform::~QVWaylandPlatform()
{
    // Devices and outputs before the globals they were made from.
    m_keyboard.reset();
    m_pointer.reset();
    m_outputs.reset();
    m_globals.reset();
}

bool QVWaylandPlatform::initialize(QString *error)
{
    QVWaylandGlobals &globals = *m_globals;
    const auto added = [this, &globals](const QVWaylandConnection::Global &global) {
        const QByteArray &kind = global.interface;
        if (kind == wl_output_interface.name) {
            m_outputs->addOutput(global);
        } else if (kind == wl_seat_interface.name && !globals.seat) {
            globals.seat = static_cast<wl_seat *>(m_connection->bind(global, &wl_seat_interface, 5));
            m_keyboard->setSeat(globals.seat);
        } else if (kind == zxdg_output_manager_v1_interface.name && !globals.outputManager) {
            globals.outputManager = static_cast<zxdg_output_manager_v1 *>(
                m_connection->bind(global, &zxdg_output_manager_v1_interface, 3));
            m_outputs->setManager(globals.outputManager);
        } else if (kind == zwlr_virtual_pointer_manager_v1_interface.name && !globals.pointerManager) {
            globals.pointerManager = static_cast<zwlr_virtual_pointer_manager_v1 *>(
                m_connection->bind(global, &zwlr_virtual_pointer_manager_v1_interface, 1));
        } else if (kind == zwp_virtual_keyboard_manager_v1_interface.name && !globals.keyboardManager) {
            globals.keyboardManager = static_cast<zwp_virtual_keyboard_manager_v1 *>(
                m_connection->bind(global, &zwp_virtual_keyboard_manager_v1_interface, 1));
            m_keyboard->setVirtualKeyboardManager(globals.keyboardManager);
        }
    };
    m_connection->setGlobalListeners(added, [this](quint32 name) { m_outputs->removeOutput(name); });
    m_outputs->setChangeListener([this] {
        m_pointer->outputsChanged();
        QVDebugLog(QStringLiteral("Wayland outputs: %1").arg(m_outputs->outputs().size()));
    });
    // The globals, then what binding them brought (outputs, the seat's devices), then
    // what those brought (the keyboard's map and repeat settings).
    for (int pass = 0; pass < 3; ++pass) {
        if (!m_connection->roundtrip()) {
            *error = QStringLiteral("the Wayland compositor closed the connection");
            return false;
        }
    }
    if (!globals.pointerManager) {
        *error = QStringLiteral("the Wayland compositor offers no virtual pointer (zwlr_virtual_pointer_manager_v1): "
                                "this back end needs a wlroots compositor");
        return false;
    }
    if (!m_keyboard->createVirtualKeyboard())
        QVLog(QStringLiteral("the Wayland compositor offers no virtual keyboard: clicks carry the modifiers held"));
    m_pointer->create(globals.pointerManager, globals.seat);
    m_connection->flush();
    m_connection->startWatching();
    return true;
}

void QVWaylandPlatform::processEvents() const
{
    // A change of the outputs may wait on the socket while an action runs: the
    // list counts as read afresh only with it handled.
    m_connection->processEvents();
}

QList<QVWaylandOutput> QVWaylandPlatform::outputs() const
{
    processEvents();
    return m_outputs->outputs();
}

QVDisplayList QVWaylandPlatform::displays() const
{
    processEvents();
    return m_outputs->displays();
}

QVPoint QVWaylandPlatform::mouseLocation() const
{
    processEvents();
    if (const std::optional<QPoint> location = m_pointer->location())
        return m_outputs->windowPointFromLayout(QPointF(*location));
    // Before Corvane moved it, the pointer is assumed in the middle of the primary.
    const QList<QVWaylandOutput> all = m_outputs->outputs();
    return all.isEmpty() ? QVPoint {} : m_outputs->windowPointFromLayout(QRectF(all.first().logical).center());
}

bool QVWaylandPlatform::isMouseLocationApproximate() const
{
    return true;
}

QVPoint QVWaylandPlatform::windowSystemPointFromGlobal(const QVPoint &global) const
{
    const QPoint origin = m_outputs->primaryOrigin();
    return { global.x + origin.x(), global.y + origin.y() };
}

bool QVWaylandPlatform::postMouseMoved(const QVPoint &globalPoint)
{
    processEvents();
    return m_pointer->moveTo(m_outputs->layoutPixelFromGlobal(globalPoint));
}

bool QVWaylandPlatform::postMouseButton(bool down, bool rightButton, bool usePrivateSource)
{
    processEvents();
    const bool cleared = usePrivateSource && m_keyboard->clearModifiers();
    const bool posted = m_pointer->button(down, rightButton);
    if (cleared)
        m_keyboard->restoreModifiers();
    return posted;
}

std::optional<QVHotKeyService::Handle> QVWaylandPlatform::registerHotKey(
    const QVHotKeyRegistration &registration, QString *reason)
{
    Q_UNUSED(registration);
    if (reason)
        *reason = QStringLiteral("a wlroots compositor grants no global keys to programs: bind the key in the "
                                 "compositor's configuration to run corvane --perform");
    return std::nullopt;
}

void QVWaylandPlatform::unregisterHotKey(Handle handle)
{
    Q_UNUSED(handle);
}

QVKeyboardService::RepeatThresholds QVWaylandPlatform::keyRepeatThresholds() const
{
    return m_keyboard->repeatThresholds();
}

bool QVWaylandPlatform::takeKeyboard()
{
    // Comes with the overlay's layer surface, which asks for the keyboard itself.
    return false;
}

void QVWaylandPlatform::releaseKeyboard() { }

QString QVWaylandPlatform::charactersIgnoringModifiers(quint16 keyCode) const
{
    return m_keyboard->charactersIgnoringModifiers(keyCode);
}

void QVWaylandPlatform::setEventHandler(EventHandler handler)
{
    m_handler = std::move(handler);
}

void QVWaylandPlatform::beep()
{
    if (m_beepLogged)
        return;
    m_beepLogged = true;
    QVLog(QStringLiteral("Wayland has no beep a program may sound: Corvane stays silent"));
}

bool QVWaylandPlatform::isCompositingManagerRunning() const
{
    // A Wayland compositor composites every surface.
    return true;
}

void QVWaylandPlatform::setWindowListedInTaskbar(quintptr window, bool listed)
{
    // Task bars list every toplevel by their own rules; a client cannot ask otherwise.
    Q_UNUSED(window);
    Q_UNUSED(listed);
}

void QVWaylandPlatform::activateWindow(quintptr window)
{
    // Qt's own Wayland plugin asks for activation (xdg-activation) when the window is raised.
    Q_UNUSED(window);
}
