#pragma once

#include "QVPlatform.h"
#include "QVWaylandOutput.h"

#include <QList>
#include <QPointF>

#include <memory>

class QVWaylandConnection;
class QVWaylandKeyboard;
class QVWaylandLayerSurface;
class QVWaylandOutputs;
class QVWaylandPointer;
class QVWaylandSeat;
struct QVWaylandGlobals;
struct wl_surface;

// The platform port on a wlroots compositor (sway, Hyprland, river, labwc, Wayfire)
// or KWin, on a connection of its own: outputs from wl_output and xdg-output, pointer
// input through a virtual pointer or KWin's fake input. The compositor grants no
// global keys to clients and tells none where the pointer is: the hot key service
// refuses (the compositor's key bindings run corvane --perform instead), and the
// pointer location is a model.
class QVWaylandPlatform final : public QVPlatform
{
public:
    // Connects to the compositor named by WAYLAND_DISPLAY, or by socketName. Nothing,
    // with error set, when there is none or it offers no device to move the pointer. Opened
    // before the application exists, it reads events only from startWatching() on.
    static std::unique_ptr<QVWaylandPlatform> open(QString *error, const QString &socketName = QString());
    ~QVWaylandPlatform() override;

    // Reads the compositor's events from the application's event loop.
    void startWatching();
    // Where the desktop grants keys (a shortcut portal): the service that takes them.
    // Its presses and releases must be handed to deliverHotKeyEvent.
    void setHotKeyService(std::unique_ptr<QVHotKeyService> service);
    void deliverHotKeyEvent(const QVEventRef &event) { deliver(event); }

    QVDisplayList displays() const override;
    QVPoint mouseLocation() const override;
    bool isMouseLocationApproximate() const override;
    QVPoint windowSystemPointFromGlobal(const QVPoint &global) const override;
    bool postMouseMoved(const QVPoint &globalPoint) override;
    bool postMouseButton(bool down, bool rightButton, bool usePrivateSource) override;
    std::optional<Handle> registerHotKey(const QVHotKeyRegistration &registration, QString *reason) override;
    void unregisterHotKey(Handle handle) override;
    bool grantsHotKeys() const override { return m_hotKeys != nullptr; }
    RepeatThresholds keyRepeatThresholds() const override;
    bool takeKeyboard() override;
    void releaseKeyboard() override;
    QString charactersIgnoringModifiers(quint16 keyCode) const override;
    void setEventHandler(EventHandler handler) override;
    void beep() override;
    bool isCompositingManagerRunning() const override;
    // A layer-shell surface on the display's output; nothing without layer shell.
    // Kept longer than the platform, it stays hidden.
    std::unique_ptr<QVOverlaySurface> createOverlaySurface(const QVDisplay &display, bool takesKeyboard) override;
    void setWindowListedInTaskbar(quintptr window, bool listed) override;
    void activateWindow(quintptr window) override;

    // The outputs as the compositor describes them, primary first.
    QList<QVWaylandOutput> outputs() const;

private:
    explicit QVWaylandPlatform(std::unique_ptr<QVWaylandConnection> connection);
    bool initialize(QString *error);
    void bindGlobal(const QByteArray &interface, quint32 name, quint32 version);
    void outputRemoved(quint32 globalName);
    void processEvents() const;
    QVWaylandLayerSurface *overlayOf(wl_surface *surface) const;
    void pointerOnSurface(wl_surface *surface, const QPointF &position);
    void deliver(const QVEventRef &event);

    std::unique_ptr<QVWaylandConnection> m_connection;
    std::unique_ptr<QVWaylandGlobals> m_globals;
    std::unique_ptr<QVWaylandOutputs> m_outputs;
    std::unique_ptr<QVWaylandPointer> m_pointer;
    std::unique_ptr<QVWaylandKeyboard> m_keyboard;
    std::unique_ptr<QVWaylandSeat> m_seat;
    QList<QVWaylandLayerSurface *> m_overlays; // owned by whoever asked for them
    EventHandler m_handler;
    std::unique_ptr<QVHotKeyService> m_hotKeys; // none: the compositor binds corvane --perform
    bool m_beepLogged = false;
};
