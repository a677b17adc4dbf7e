#include "QVWaylandPlatform.h"

#include "QVLog.h"
#include "QVWaylandConnection.h"
#include "QVWaylandFakeInput.h"
#include "QVWaylandKeyboard.h"
#include "QVWaylandLayerSurface.h"
#include "QVWaylandOutputs.h"
#include "QVWaylandPointer.h"
#include "QVWaylandSeat.h"
#include "QVWaylandVirtualPointer.h"
#include "fake-input-client-protocol.h"
#include "virtual-keyboard-unstable-v1-client-protocol.h"
#include "wlr-layer-shell-unstable-v1-client-protocol.h"
#include "wlr-virtual-pointer-unstable-v1-client-protocol.h"
#include "xdg-output-unstable-v1-client-protocol.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <wayland-client.h>

#include <algorithm>
#include <cmath>

// The compositor's single objects that Corvane binds, released before the connection goes.
struct QVWaylandGlobals {
    wl_compositor *compositor = nullptr;
    wl_shm *shm = nullptr;
    zwlr_layer_shell_v1 *layerShell = nullptr;
    wl_seat *seat = nullptr;
    zxdg_output_manager_v1 *outputManager = nullptr;
    zwlr_virtual_pointer_manager_v1 *pointerManager = nullptr;
    zwp_virtual_keyboard_manager_v1 *keyboardManager = nullptr;
    org_kde_kwin_fake_input *fakeInput = nullptr; // until a device takes it over
    bool kwin = false;

    ~QVWaylandGlobals()
    {
        if (fakeInput)
            org_kde_kwin_fake_input_destroy(fakeInput);
        if (layerShell)
            zwlr_layer_shell_v1_destroy(layerShell);
        if (shm)
            wl_shm_destroy(shm);
        if (compositor)
            wl_compositor_destroy(compositor);
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

namespace
{

QString noPointerDeviceMessage(bool kwin)
{
    if (kwin) {
        // KWin compares the path of the running executable with the entries' Exec.
        const QString executable = QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget();
        return QStringLiteral("KWin withholds its fake input (org_kde_kwin_fake_input) from %1: it grants it only to "
                              "a program whose desktop entry (org.corvane.Corvane.desktop, as installed in "
                              "share/applications) has Exec=%1 and X-KDE-Wayland-Interfaces=org_kde_kwin_fake_input; "
                              "install Corvane and run the installed program")
            .arg(executable);
    }
    return QStringLiteral("the Wayland compositor offers no virtual pointer (zwlr_virtual_pointer_manager_v1) and "
                          "no fake input (org_kde_kwin_fake_input): this back end needs a wlroots compositor "
                          "(sway, Hyprland, river, labwc, Wayfire) or KDE Plasma");
}

} // namespace

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
    , m_seat(std::make_unique<QVWaylandSeat>(*m_keyboard))
{
}

QVWaylandPlatform::~QVWaylandPlatform()
{
    // Devices and outputs before the globals they were made from.
    // An overlay kept longer than the platform stays hidden and inert.
    for (QVWaylandLayerSurface *overlay : std::as_const(m_overlays)) {
        overlay->setClosedListener(nullptr); // its owner may be going too
        overlay->outputGone();
        overlay->setDestroyedListener(nullptr);
    }
    m_seat.reset();
    m_keyboard.reset();
    m_pointer.reset();
    m_outputs.reset();
    m_globals.reset();
}

void QVWaylandPlatform::bindGlobal(const QByteArray &kind, quint32 name, quint32 version)
{
    QVWaylandGlobals &globals = *m_globals;
    const QVWaylandConnection::Global global { name, kind, version };
    const auto bind = [this, &global](const wl_interface *interface, quint32 wanted) {
        return m_connection->bind(global, interface, wanted);
    };
    if (kind == wl_output_interface.name) {
        m_outputs->addOutput(global);
    } else if (kind == wl_seat_interface.name && !globals.seat) {
        globals.seat = static_cast<wl_seat *>(bind(&wl_seat_interface, 5));
        m_seat->setSeat(globals.seat);
    } else if (kind == wl_compositor_interface.name && !globals.compositor) {
        // Version 4 takes damage in buffer pixels.
        globals.compositor = static_cast<wl_compositor *>(bind(&wl_compositor_interface, 4));
    } else if (kind == wl_shm_interface.name && !globals.shm) {
        globals.shm = static_cast<wl_shm *>(bind(&wl_shm_interface, 1));
    } else if (kind == zwlr_layer_shell_v1_interface.name && !globals.layerShell) {
        globals.layerShell = static_cast<zwlr_layer_shell_v1 *>(bind(&zwlr_layer_shell_v1_interface, 1));
    } else if (kind == zxdg_output_manager_v1_interface.name && !globals.outputManager) {
        globals.outputManager = static_cast<zxdg_output_manager_v1 *>(bind(&zxdg_output_manager_v1_interface, 3));
        m_outputs->setManager(globals.outputManager);
    } else if (kind == zwlr_virtual_pointer_manager_v1_interface.name && !globals.pointerManager) {
        globals.pointerManager
            = static_cast<zwlr_virtual_pointer_manager_v1 *>(bind(&zwlr_virtual_pointer_manager_v1_interface, 1));
    } else if (kind == zwp_virtual_keyboard_manager_v1_interface.name && !globals.keyboardManager) {
        globals.keyboardManager
            = static_cast<zwp_virtual_keyboard_manager_v1 *>(bind(&zwp_virtual_keyboard_manager_v1_interface, 1));
        m_keyboard->setVirtualKeyboardManager(globals.keyboardManager);
    } else if (kind == org_kde_kwin_fake_input_interface.name && !globals.fakeInput
        && version >= QVWaylandFakeInput::minimumVersion) {
        globals.fakeInput = static_cast<org_kde_kwin_fake_input *>(bind(&org_kde_kwin_fake_input_interface, 4));
    }
    // KWin's own interfaces tell it apart, to say what it needs when fake input is refused.
    if (kind.startsWith("org_kde_kwin_"))
        globals.kwin = true;
}

void QVWaylandPlatform::outputRemoved(quint32 globalName)
{
    // An overlay on it hides for good before its output's object goes.
    if (wl_output *output = m_outputs->outputOfGlobal(globalName)) {
        for (QVWaylandLayerSurface *overlay : std::as_const(m_overlays)) {
            if (overlay->output() == output)
                overlay->outputGone();
        }
    }
    m_outputs->removeOutput(globalName);
}

bool QVWaylandPlatform::initialize(QString *error)
{
    QVWaylandGlobals &globals = *m_globals;
    m_connection->setGlobalListeners(
        [this](
            const QVWaylandConnection::Global &global) { bindGlobal(global.interface, global.name, global.version); },
        [this](quint32 name) { outputRemoved(name); });
    m_seat->setPointerListener(
        { [this](wl_surface *surface, const QPointF &position) { pointerOnSurface(surface, position); },
            [this](wl_surface *surface, bool pressed) {
                // A click on the overlay, as a click elsewhere on X11: whoever has the keyboard lets go.
                if (!pressed || !overlayOf(surface))
                    return;
                auto click = std::make_shared<QVEvent>();
                click->type = QVEvent::LeftMouseDown;
                click->location = mouseLocation();
                deliver(click);
            } });
    m_keyboard->setKeyHandler([this](const QVEventRef &event) {
        auto located = std::make_shared<QVEvent>(*event);
        located->location = mouseLocation();
        deliver(located);
    });
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
    // The virtual pointer where both exist: it takes no permission.
    if (globals.pointerManager) {
        m_pointer->setDevice(std::make_unique<QVWaylandVirtualPointer>(globals.pointerManager, globals.seat));
    } else if (globals.fakeInput) {
        m_pointer->setDevice(std::make_unique<QVWaylandFakeInput>(std::exchange(globals.fakeInput, nullptr)));
    } else {
        *error = noPointerDeviceMessage(globals.kwin);
        return false;
    }
    if (!m_keyboard->createVirtualKeyboard())
        QVLog(QStringLiteral("the Wayland compositor offers no virtual keyboard: clicks carry the modifiers held"));
    m_connection->flush();
    if (QCoreApplication::instance())
        startWatching();
    return true;
}

void QVWaylandPlatform::startWatching()
{
    m_connection->startWatching();
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

void QVWaylandPlatform::setHotKeyService(std::unique_ptr<QVHotKeyService> service)
{
    m_hotKeys = std::move(service);
}

std::optional<QVHotKeyService::Handle> QVWaylandPlatform::registerHotKey(
    const QVHotKeyRegistration &registration, QString *reason)
{
    if (m_hotKeys)
        return m_hotKeys->registerHotKey(registration, reason);
    if (reason)
        *reason = QStringLiteral("on Wayland Corvane takes no global keys itself: bind the key in the "
                                 "compositor's settings to run corvane --perform");
    return std::nullopt;
}

void QVWaylandPlatform::unregisterHotKey(Handle handle)
{
    if (m_hotKeys)
        m_hotKeys->unregisterHotKey(handle);
}

QVKeyboardService::RepeatThresholds QVWaylandPlatform::keyRepeatThresholds() const
{
    return m_keyboard->repeatThresholds();
}

bool QVWaylandPlatform::takeKeyboard()
{
    // An overlay surface asks for the keyboard itself when it shows.
    return std::any_of(m_overlays.cbegin(), m_overlays.cend(),
        [](const QVWaylandLayerSurface *overlay) { return overlay->takesKeyboard(); });
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

void QVWaylandPlatform::deliver(const QVEventRef &event)
{
    if (m_handler)
        m_handler(event);
}

std::unique_ptr<QVOverlaySurface> QVWaylandPlatform::createOverlaySurface(const QVDisplay &display, bool takesKeyboard)
{
    processEvents();
    const QVWaylandGlobals &globals = *m_globals;
    QVWaylandOutput description;
    wl_output *output = m_outputs->outputNamed(display.name, &description);
    if (!globals.layerShell || !globals.compositor || !globals.shm || !output) {
        QVLog(QStringLiteral("no overlay on display \"%1\": the compositor offers no layer shell or no such output")
                  .arg(display.name));
        return nullptr;
    }
    auto overlay = std::make_unique<QVWaylandLayerSurface>(*m_connection,
        QVWaylandLayerSurface::Shell { globals.compositor, globals.shm, globals.layerShell }, output,
        description.logical.size(), description.scale, takesKeyboard);
    QVWaylandLayerSurface *registered = overlay.get();
    m_overlays.append(registered);
    overlay->setDestroyedListener([this, registered] { m_overlays.removeOne(registered); });
    return overlay;
}

QVWaylandLayerSurface *QVWaylandPlatform::overlayOf(wl_surface *surface) const
{
    for (QVWaylandLayerSurface *overlay : m_overlays) {
        if (surface && overlay->surface() == surface)
            return overlay;
    }
    return nullptr;
}

void QVWaylandPlatform::pointerOnSurface(wl_surface *surface, const QPointF &position)
{
    // The one place Wayland tells where the pointer is: the model takes it over.
    const QVWaylandLayerSurface *overlay = overlayOf(surface);
    const std::optional<QVWaylandOutput> output = overlay ? m_outputs->describe(overlay->output()) : std::nullopt;
    if (output) {
        const QPointF layout = position + QPointF(output->logical.topLeft());
        m_pointer->setObservedLocation(QPoint(int(std::floor(layout.x())), int(std::floor(layout.y()))));
    }
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
