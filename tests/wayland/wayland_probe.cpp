// A Wayland client the tests own: a full-screen window on every output that prints,
// one line each, what reaches it from the pointer and the keyboard:
//   output NAME X Y W H          an output's logical place (xdg-output)
//   configured NAME W H          its window is full screen and drawn at that size
//   seat pointer|keyboard ...    the seat's devices changed
//   enter|motion NAME SX SY      pointer position in the window's surface coordinates
//   leave NAME
//   button NAME CODE STATE MODS  MODS: the held modifiers' names joined by '+', or "none"
//   focus NAME                   the keyboard entered this output's window
//   modifiers MODS
// Commands on standard input, each answered by "ok COMMAND" once the compositor has them:
//   press CODE | release CODE    a key (evdev code) of the probe's own virtual keyboard
//   move X Y                     the probe's own virtual pointer to a layout pixel
//   quit

#include "virtual-keyboard-unstable-v1-client-protocol.h"
#include "wlr-virtual-pointer-unstable-v1-client-protocol.h"
#include "xdg-output-unstable-v1-client-protocol.h"
#include "xdg-shell-client-protocol.h"

#include <wayland-client.h>
#include <xkbcommon/xkbcommon.h>

#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <list>
#include <memory>
#include <string>

namespace
{

struct Probe;

struct Output {
    Probe *probe = nullptr;
    uint32_t globalName = 0;
    wl_output *output = nullptr;
    zxdg_output_v1 *xdgOutput = nullptr;
    std::string name;
    int x = 0, y = 0, width = 0, height = 0;
    wl_surface *surface = nullptr;
    xdg_surface *xdgSurface = nullptr;
    xdg_toplevel *toplevel = nullptr;
    wl_buffer *buffer = nullptr;
    int pendingWidth = 0, pendingHeight = 0;
    int bufferWidth = 0, bufferHeight = 0;
};

struct Probe {
    wl_display *display = nullptr;
    wl_compositor *compositor = nullptr;
    wl_shm *shm = nullptr;
    xdg_wm_base *wmBase = nullptr;
    wl_seat *seat = nullptr;
    zxdg_output_manager_v1 *outputManager = nullptr;
    zwp_virtual_keyboard_manager_v1 *keyboardManager = nullptr;
    zwlr_virtual_pointer_manager_v1 *pointerManager = nullptr;
    zwlr_virtual_pointer_v1 *virtualPointer = nullptr;
    zwp_virtual_keyboard_v1 *virtualKeyboard = nullptr;
    xkb_state *virtualState = nullptr;
    wl_pointer *pointer = nullptr;
    wl_keyboard *keyboard = nullptr;
    xkb_context *xkb = nullptr;
    xkb_keymap *keymap = nullptr;
    xkb_state *state = nullptr;
    std::list<Output> outputs;
    Output *pointerOutput = nullptr;
    bool quit = false;
};

void say(const char *format, ...) __attribute__((format(printf, 1, 2)));
void say(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::vprintf(format, arguments);
    va_end(arguments);
    std::putchar('\n');
    std::fflush(stdout);
}

Output *outputOfSurface(Probe *probe, wl_surface *surface)
{
    for (Output &output : probe->outputs) {
        if (output.surface == surface)
            return &output;
    }
    return nullptr;
}

const char *nameOf(const Output *output)
{
    return output ? output->name.c_str() : "?";
}

// The names of the modifiers held down or latched, "none" without any.
std::string heldModifiers(xkb_state *state, xkb_keymap *keymap)
{
    std::string names;
    for (xkb_mod_index_t index = 0; state && index < xkb_keymap_num_mods(keymap); ++index) {
        if (xkb_state_mod_index_is_active(
                state, index, xkb_state_component(XKB_STATE_MODS_DEPRESSED | XKB_STATE_MODS_LATCHED))
            > 0)
            names += (names.empty() ? "" : "+") + std::string(xkb_keymap_mod_get_name(keymap, index));
    }
    return names.empty() ? "none" : names;
}

int sharedMemory(size_t size)
{
    const int fd = memfd_create("corvane-probe", MFD_CLOEXEC);
    if (fd >= 0 && ftruncate(fd, off_t(size)) != 0) {
        close(fd);
        return -1;
    }
    return fd;
}

// A plain grey buffer: the tests look at positions, not pictures.
wl_buffer *solidBuffer(Probe *probe, int width, int height)
{
    const size_t size = size_t(width) * size_t(height) * 4;
    const int fd = sharedMemory(size);
    if (fd < 0)
        return nullptr;
    void *pixels = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    if (pixels != MAP_FAILED) {
        std::memset(pixels, 0x60, size);
        munmap(pixels, size);
    }
    wl_shm_pool *pool = wl_shm_create_pool(probe->shm, fd, int32_t(size));
    wl_buffer *buffer = wl_shm_pool_create_buffer(pool, 0, width, height, width * 4, WL_SHM_FORMAT_XRGB8888);
    wl_shm_pool_destroy(pool);
    close(fd);
    return buffer;
}

// --- windows -------------------------------------------------------------------------------------

void surfaceConfigured(void *data, xdg_surface *surface, uint32_t serial)
{
    auto *output = static_cast<Output *>(data);
    Probe *probe = output->probe;
    xdg_surface_ack_configure(surface, serial);
    const int width = output->pendingWidth > 0 ? output->pendingWidth : output->width;
    const int height = output->pendingHeight > 0 ? output->pendingHeight : output->height;
    if (width <= 0 || height <= 0)
        return;
    if (width != output->bufferWidth || height != output->bufferHeight) {
        if (output->buffer)
            wl_buffer_destroy(output->buffer);
        output->buffer = solidBuffer(probe, width, height);
        output->bufferWidth = width;
        output->bufferHeight = height;
    }
    wl_surface_attach(output->surface, output->buffer, 0, 0);
    wl_surface_damage(output->surface, 0, 0, width, height);
    wl_surface_commit(output->surface);
    say("configured %s %d %d", output->name.c_str(), width, height);
}

const xdg_surface_listener surfaceListener = { .configure = surfaceConfigured };

void toplevelConfigured(void *data, xdg_toplevel *, int32_t width, int32_t height, wl_array *)
{
    auto *output = static_cast<Output *>(data);
    output->pendingWidth = width;
    output->pendingHeight = height;
}

void toplevelClosed(void *, xdg_toplevel *) { }

const xdg_toplevel_listener toplevelListener = {
    .configure = toplevelConfigured, .close = toplevelClosed, .configure_bounds = nullptr, .wm_capabilities = nullptr
};

void openWindow(Probe *probe, Output *output)
{
    output->surface = wl_compositor_create_surface(probe->compositor);
    output->xdgSurface = xdg_wm_base_get_xdg_surface(probe->wmBase, output->surface);
    xdg_surface_add_listener(output->xdgSurface, &surfaceListener, output);
    output->toplevel = xdg_surface_get_toplevel(output->xdgSurface);
    xdg_toplevel_add_listener(output->toplevel, &toplevelListener, output);
    xdg_toplevel_set_app_id(output->toplevel, "corvane-probe");
    xdg_toplevel_set_title(output->toplevel, output->name.c_str());
    xdg_toplevel_set_fullscreen(output->toplevel, output->output);
    wl_surface_commit(output->surface);
}

// --- outputs -------------------------------------------------------------------------------------

void logicalPosition(void *data, zxdg_output_v1 *, int32_t x, int32_t y)
{
    auto *output = static_cast<Output *>(data);
    output->x = x;
    output->y = y;
}

void logicalSize(void *data, zxdg_output_v1 *, int32_t width, int32_t height)
{
    auto *output = static_cast<Output *>(data);
    output->width = width;
    output->height = height;
}

void xdgOutputDone(void *, zxdg_output_v1 *) { }

void xdgOutputName(void *data, zxdg_output_v1 *, const char *name)
{
    static_cast<Output *>(data)->name = name;
}

void xdgOutputDescription(void *, zxdg_output_v1 *, const char *) { }

const zxdg_output_v1_listener xdgOutputListener = { .logical_position = logicalPosition,
    .logical_size = logicalSize,
    .done = xdgOutputDone,
    .name = xdgOutputName,
    .description = xdgOutputDescription };

// --- pointer -------------------------------------------------------------------------------------

void pointerEntered(void *data, wl_pointer *, uint32_t, wl_surface *surface, wl_fixed_t x, wl_fixed_t y)
{
    auto *probe = static_cast<Probe *>(data);
    probe->pointerOutput = outputOfSurface(probe, surface);
    say("enter %s %.2f %.2f", nameOf(probe->pointerOutput), wl_fixed_to_double(x), wl_fixed_to_double(y));
}

void pointerLeft(void *data, wl_pointer *, uint32_t, wl_surface *)
{
    auto *probe = static_cast<Probe *>(data);
    say("leave %s", nameOf(probe->pointerOutput));
    probe->pointerOutput = nullptr;
}

void pointerMoved(void *data, wl_pointer *, uint32_t, wl_fixed_t x, wl_fixed_t y)
{
    auto *probe = static_cast<Probe *>(data);
    say("motion %s %.2f %.2f", nameOf(probe->pointerOutput), wl_fixed_to_double(x), wl_fixed_to_double(y));
}

void pointerButton(void *data, wl_pointer *, uint32_t, uint32_t, uint32_t button, uint32_t state)
{
    auto *probe = static_cast<Probe *>(data);
    say("button %s %u %u %s", nameOf(probe->pointerOutput), button, state,
        heldModifiers(probe->state, probe->keymap).c_str());
}

void pointerAxis(void *, wl_pointer *, uint32_t, uint32_t, wl_fixed_t) { }
void pointerFrame(void *, wl_pointer *) { }
void pointerAxisSource(void *, wl_pointer *, uint32_t) { }
void pointerAxisStop(void *, wl_pointer *, uint32_t, uint32_t) { }
void pointerAxisDiscrete(void *, wl_pointer *, uint32_t, int32_t) { }

const wl_pointer_listener pointerListener = { .enter = pointerEntered,
    .leave = pointerLeft,
    .motion = pointerMoved,
    .button = pointerButton,
    .axis = pointerAxis,
    .frame = pointerFrame,
    .axis_source = pointerAxisSource,
    .axis_stop = pointerAxisStop,
    .axis_discrete = pointerAxisDiscrete,
    .axis_value120 = nullptr };

// --- keyboard ------------------------------------------------------------------------------------

void keymapReceived(void *data, wl_keyboard *, uint32_t format, int32_t fd, uint32_t size)
{
    auto *probe = static_cast<Probe *>(data);
    void *text
        = format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1 ? mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0) : MAP_FAILED;
    close(fd);
    if (text == MAP_FAILED)
        return;
    xkb_keymap *keymap = xkb_keymap_new_from_buffer(
        probe->xkb, static_cast<const char *>(text), size - 1, XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS);
    munmap(text, size);
    if (!keymap)
        return;
    xkb_state_unref(probe->state);
    xkb_keymap_unref(probe->keymap);
    probe->keymap = keymap;
    probe->state = xkb_state_new(keymap);
}

void keyboardEntered(void *data, wl_keyboard *, uint32_t, wl_surface *surface, wl_array *)
{
    say("focus %s", nameOf(outputOfSurface(static_cast<Probe *>(data), surface)));
}

void keyboardLeft(void *, wl_keyboard *, uint32_t, wl_surface *) { }
void keyChanged(void *, wl_keyboard *, uint32_t, uint32_t, uint32_t, uint32_t) { }

void modifiersChanged(
    void *data, wl_keyboard *, uint32_t, uint32_t depressed, uint32_t latched, uint32_t locked, uint32_t group)
{
    auto *probe = static_cast<Probe *>(data);
    if (!probe->state)
        return;
    xkb_state_update_mask(probe->state, depressed, latched, locked, 0, 0, group);
    say("modifiers %s", heldModifiers(probe->state, probe->keymap).c_str());
}

void repeatInfo(void *, wl_keyboard *, int32_t, int32_t) { }

const wl_keyboard_listener keyboardListener = { .keymap = keymapReceived,
    .enter = keyboardEntered,
    .leave = keyboardLeft,
    .key = keyChanged,
    .modifiers = modifiersChanged,
    .repeat_info = repeatInfo };

void seatCapabilities(void *data, wl_seat *seat, uint32_t capabilities)
{
    auto *probe = static_cast<Probe *>(data);
    if ((capabilities & WL_SEAT_CAPABILITY_POINTER) && !probe->pointer) {
        probe->pointer = wl_seat_get_pointer(seat);
        wl_pointer_add_listener(probe->pointer, &pointerListener, probe);
    }
    if ((capabilities & WL_SEAT_CAPABILITY_KEYBOARD) && !probe->keyboard) {
        probe->keyboard = wl_seat_get_keyboard(seat);
        wl_keyboard_add_listener(probe->keyboard, &keyboardListener, probe);
    }
    say("seat%s%s", (capabilities & WL_SEAT_CAPABILITY_POINTER) ? " pointer" : "",
        (capabilities & WL_SEAT_CAPABILITY_KEYBOARD) ? " keyboard" : "");
}

void seatName(void *, wl_seat *, const char *) { }

const wl_seat_listener seatListener = { .capabilities = seatCapabilities, .name = seatName };

// --- globals -------------------------------------------------------------------------------------

void wmPing(void *, xdg_wm_base *base, uint32_t serial)
{
    xdg_wm_base_pong(base, serial);
}

const xdg_wm_base_listener wmBaseListener = { .ping = wmPing };

template<typename T>
T *bind(wl_registry *registry, uint32_t name, const wl_interface *interface, uint32_t offered, uint32_t wanted)
{
    return static_cast<T *>(wl_registry_bind(registry, name, interface, offered < wanted ? offered : wanted));
}

void globalAdded(void *data, wl_registry *registry, uint32_t name, const char *interface, uint32_t version)
{
    auto *probe = static_cast<Probe *>(data);
    const std::string kind = interface;
    if (kind == wl_compositor_interface.name) {
        probe->compositor = bind<wl_compositor>(registry, name, &wl_compositor_interface, version, 4);
    } else if (kind == wl_shm_interface.name) {
        probe->shm = bind<wl_shm>(registry, name, &wl_shm_interface, version, 1);
    } else if (kind == xdg_wm_base_interface.name) {
        probe->wmBase = bind<xdg_wm_base>(registry, name, &xdg_wm_base_interface, version, 2);
        xdg_wm_base_add_listener(probe->wmBase, &wmBaseListener, probe);
    } else if (kind == wl_seat_interface.name && !probe->seat) {
        probe->seat = bind<wl_seat>(registry, name, &wl_seat_interface, version, 7);
        wl_seat_add_listener(probe->seat, &seatListener, probe);
    } else if (kind == zxdg_output_manager_v1_interface.name) {
        probe->outputManager
            = bind<zxdg_output_manager_v1>(registry, name, &zxdg_output_manager_v1_interface, version, 3);
    } else if (kind == zwp_virtual_keyboard_manager_v1_interface.name) {
        probe->keyboardManager = bind<zwp_virtual_keyboard_manager_v1>(
            registry, name, &zwp_virtual_keyboard_manager_v1_interface, version, 1);
    } else if (kind == zwlr_virtual_pointer_manager_v1_interface.name) {
        probe->pointerManager = bind<zwlr_virtual_pointer_manager_v1>(
            registry, name, &zwlr_virtual_pointer_manager_v1_interface, version, 1);
    } else if (kind == wl_output_interface.name) {
        Output &output = probe->outputs.emplace_back();
        output.probe = probe;
        output.globalName = name;
        output.output = bind<wl_output>(registry, name, &wl_output_interface, version, 3);
        if (probe->outputManager) {
            output.xdgOutput = zxdg_output_manager_v1_get_xdg_output(probe->outputManager, output.output);
            zxdg_output_v1_add_listener(output.xdgOutput, &xdgOutputListener, &output);
        }
    }
}

void globalRemoved(void *data, wl_registry *, uint32_t name)
{
    auto *probe = static_cast<Probe *>(data);
    probe->outputs.remove_if([probe, name](Output &output) {
        if (output.globalName != name)
            return false;
        say("removed %s", output.name.c_str());
        if (probe->pointerOutput == &output)
            probe->pointerOutput = nullptr;
        // The window goes with its output: its listeners point into this record.
        if (output.toplevel) {
            xdg_toplevel_destroy(output.toplevel);
            xdg_surface_destroy(output.xdgSurface);
            wl_surface_destroy(output.surface);
        }
        if (output.buffer)
            wl_buffer_destroy(output.buffer);
        if (output.xdgOutput)
            zxdg_output_v1_destroy(output.xdgOutput);
        wl_output_destroy(output.output);
        return true;
    });
}

const wl_registry_listener registryListener = { .global = globalAdded, .global_remove = globalRemoved };

// Outputs that arrived since the last look get their names read and a window.
void openNewWindows(Probe *probe)
{
    for (Output &output : probe->outputs) {
        if (output.surface)
            continue;
        if (!output.xdgOutput && probe->outputManager) {
            output.xdgOutput = zxdg_output_manager_v1_get_xdg_output(probe->outputManager, output.output);
            zxdg_output_v1_add_listener(output.xdgOutput, &xdgOutputListener, &output);
            wl_display_roundtrip(probe->display);
        }
        say("output %s %d %d %d %d", output.name.c_str(), output.x, output.y, output.width, output.height);
        openWindow(probe, &output);
    }
}

// --- the probe's own keyboard --------------------------------------------------------------------

bool createVirtualKeyboard(Probe *probe)
{
    if (probe->virtualKeyboard)
        return true;
    if (!probe->keyboardManager || !probe->seat)
        return false;
    xkb_rule_names names = {};
    xkb_keymap *keymap = xkb_keymap_new_from_names(probe->xkb, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
    if (!keymap)
        return false;
    char *text = xkb_keymap_get_as_string(keymap, XKB_KEYMAP_FORMAT_TEXT_V1);
    const size_t size = std::strlen(text) + 1;
    const int fd = sharedMemory(size);
    if (fd < 0 || pwrite(fd, text, size, 0) != ssize_t(size)) {
        std::free(text);
        return false;
    }
    std::free(text);
    probe->virtualKeyboard
        = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(probe->keyboardManager, probe->seat);
    zwp_virtual_keyboard_v1_keymap(probe->virtualKeyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, fd, uint32_t(size));
    close(fd);
    probe->virtualState = xkb_state_new(keymap);
    xkb_keymap_unref(keymap);
    return true;
}

bool sendKey(Probe *probe, uint32_t code, bool press)
{
    if (!createVirtualKeyboard(probe))
        return false;
    zwp_virtual_keyboard_v1_key(
        probe->virtualKeyboard, 0, code, press ? WL_KEYBOARD_KEY_STATE_PRESSED : WL_KEYBOARD_KEY_STATE_RELEASED);
    // A virtual keyboard states its modifiers itself: the compositor does not derive them from keys.
    xkb_state *state = probe->virtualState;
    xkb_state_update_key(state, code + 8, press ? XKB_KEY_DOWN : XKB_KEY_UP);
    zwp_virtual_keyboard_v1_modifiers(probe->virtualKeyboard, xkb_state_serialize_mods(state, XKB_STATE_MODS_DEPRESSED),
        xkb_state_serialize_mods(state, XKB_STATE_MODS_LATCHED), xkb_state_serialize_mods(state, XKB_STATE_MODS_LOCKED),
        xkb_state_serialize_layout(state, XKB_STATE_LAYOUT_EFFECTIVE));
    return true;
}

// Another hand on the pointer: a motion to the centre of a layout pixel, which the
// compositor scales onto the layout's bounding box.
bool movePointer(Probe *probe, int x, int y)
{
    if (!probe->pointerManager || probe->outputs.empty())
        return false;
    if (!probe->virtualPointer)
        probe->virtualPointer
            = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(probe->pointerManager, probe->seat);
    int left = INT_MAX, top = INT_MAX, right = INT_MIN, bottom = INT_MIN;
    for (const Output &output : probe->outputs) {
        left = std::min(left, output.x);
        top = std::min(top, output.y);
        right = std::max(right, output.x + output.width);
        bottom = std::max(bottom, output.y + output.height);
    }
    zwlr_virtual_pointer_v1_motion_absolute(probe->virtualPointer, 0, uint32_t(2 * (x - left) + 1),
        uint32_t(2 * (y - top) + 1), uint32_t(2 * (right - left)), uint32_t(2 * (bottom - top)));
    zwlr_virtual_pointer_v1_frame(probe->virtualPointer);
    return true;
}

void runCommand(Probe *probe, const std::string &line)
{
    unsigned code = 0;
    int x = 0, y = 0;
    bool done = false;
    if (std::sscanf(line.c_str(), "move %d %d", &x, &y) == 2)
        done = movePointer(probe, x, y);
    else if (std::sscanf(line.c_str(), "press %u", &code) == 1)
        done = sendKey(probe, code, true);
    else if (std::sscanf(line.c_str(), "release %u", &code) == 1)
        done = sendKey(probe, code, false);
    else if (line == "quit")
        done = probe->quit = true;
    wl_display_roundtrip(probe->display);
    say("%s %s", done ? "ok" : "failed", line.c_str());
}

bool readCommands(Probe *probe, std::string *pending)
{
    char chunk[256];
    const ssize_t count = read(STDIN_FILENO, chunk, sizeof chunk);
    if (count <= 0)
        return false;
    pending->append(chunk, size_t(count));
    for (size_t end; (end = pending->find('\n')) != std::string::npos;) {
        runCommand(probe, pending->substr(0, end));
        pending->erase(0, end + 1);
    }
    return true;
}

} // namespace

int main()
{
    Probe probe;
    probe.display = wl_display_connect(nullptr);
    if (!probe.display) {
        std::fprintf(stderr, "wayland-probe: cannot connect to the compositor\n");
        return 1;
    }
    probe.xkb = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    wl_registry *registry = wl_display_get_registry(probe.display);
    wl_registry_add_listener(registry, &registryListener, &probe);
    wl_display_roundtrip(probe.display);
    if (!probe.compositor || !probe.shm || !probe.wmBase || !probe.outputManager) {
        std::fprintf(stderr, "wayland-probe: the compositor lacks a global the probe needs\n");
        return 1;
    }
    wl_display_roundtrip(probe.display);
    openNewWindows(&probe);

    std::string pending;
    bool commands = true;
    while (!probe.quit) {
        wl_display_dispatch_pending(probe.display);
        wl_display_flush(probe.display);
        pollfd fds[2] = { { wl_display_get_fd(probe.display), POLLIN, 0 }, { STDIN_FILENO, POLLIN, 0 } };
        if (poll(fds, commands ? 2 : 1, -1) < 0)
            continue;
        if (fds[0].revents & (POLLERR | POLLHUP))
            break;
        if ((fds[0].revents & POLLIN) && wl_display_dispatch(probe.display) < 0)
            break;
        if (commands && (fds[1].revents & (POLLIN | POLLHUP)))
            commands = readCommands(&probe, &pending);
        openNewWindows(&probe);
    }
    wl_display_disconnect(probe.display);
    return 0;
}
