#pragma once

#include "QVPlatform.h"
#include "QVX11Keyboard.h"

#include <memory>

class QVX11Connection;
class QVX11Displays;
class QVX11HotKeyGrabs;
class QVX11InputSynthesizer;
class QVX11WindowHints;
#include <xcb/xcb.h>

// The X11 back end of the platform port, on a connection of its own.
class QVX11Platform final : public QVPlatform
{
public:
    // Nothing, with error set, when an extension it needs is missing.
    static std::unique_ptr<QVX11Platform> open(std::unique_ptr<QVX11Connection> connection, QString *error);
    ~QVX11Platform() override;

    QVDisplayList displays() const override;
    QVPoint mouseLocation() const override;
    Snapshot displaysAndMouseLocation() const override;
    QVPoint windowSystemPointFromGlobal(const QVPoint &global) const override;
    bool postMouseMoved(const QVPoint &globalPoint) override;
    bool postMouseButton(bool down, bool rightButton, bool usePrivateSource) override;
    std::optional<Handle> registerHotKey(const QVHotKeyRegistration &registration, QString *reason) override;
    void unregisterHotKey(Handle handle) override;
    RepeatThresholds keyRepeatThresholds() const override;
    bool takeKeyboard() override;
    void releaseKeyboard() override;
    quint64 modifierFlagsForNativeModifiers(quint32 nativeModifiers) const override;
    QString charactersIgnoringModifiers(quint16 keyCode) const override;
    void setEventHandler(EventHandler handler) override;
    void beep() override;
    bool isCompositingManagerRunning() const override;
    void setWindowListedInTaskbar(quintptr window, bool listed) override;
    void activateWindow(quintptr window) override;

private:
    explicit QVX11Platform(std::unique_ptr<QVX11Connection> connection);
    bool initialize(QString *error);
    void handleEvent(const xcb_generic_event_t *event);
    void handleKey(const xcb_generic_event_t *event, bool press);
    void modifierKeyChanged(const QVX11Keyboard::KeyChange &change);
    void deliver(const QVEventRef &event);
    void applyMappingChange();

    std::unique_ptr<QVX11Connection> m_connection;
    std::unique_ptr<QVX11Keyboard> m_keyboard;
    std::unique_ptr<QVX11Displays> m_displays;
    std::unique_ptr<QVX11HotKeyGrabs> m_grabs;
    std::unique_ptr<QVX11InputSynthesizer> m_synthesizer;
    std::unique_ptr<QVX11WindowHints> m_windowHints;
    EventHandler m_handler;
    bool m_keyboardTaken = false;
    mutable xcb_atom_t m_compositorSelection = XCB_ATOM_NONE;
    bool m_mappingChanged = false;
};
