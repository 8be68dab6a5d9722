#include "platform/linux/wayland/VirtualKeyboard.h"

#include "platform/linux/runtime/FileDescriptor.h"
#include "platform/linux/wayland/WaylandConnection.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>
#include <virtual-keyboard-unstable-v1-client-protocol.h>
#include <wayland-client.h>
#include <xkbcommon/xkbcommon.h>

namespace orlune {

namespace {

constexpr std::uint32_t keycodeOffset = 8; ///< XKB counts keys from 8, the kernel from 0

struct ContextDeleter {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
};
struct KeymapDeleter {
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
};

/// The keymap for the keys that are posted, independent of the user's layout.
std::unique_ptr<xkb_keymap, KeymapDeleter> americanKeymap() {
    const std::unique_ptr<xkb_context, ContextDeleter> context(
        xkb_context_new(XKB_CONTEXT_NO_ENVIRONMENT_NAMES));
    const xkb_rule_names names{
        .rules = "evdev", .model = "pc105", .layout = "us", .variant = "", .options = ""};
    return std::unique_ptr<xkb_keymap, KeymapDeleter>(
        context ? xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS)
                : nullptr);
}

/// A file in memory with this text and its terminating NUL, which the protocol requires.
FileDescriptor memoryFile(const char* text) {
    FileDescriptor file(memfd_create("orlune-keymap", MFD_CLOEXEC));
    const auto size = std::strlen(text) + 1;
    if (!file || ::write(file.get(), text, size) != static_cast<ssize_t>(size)) {
        return FileDescriptor();
    }
    return file;
}

std::uint32_t millisecondsNow() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

} // namespace

void VirtualKeyboard::StateDeleter::operator()(xkb_state* state) const {
    xkb_state_unref(state);
}

std::unique_ptr<VirtualKeyboard> VirtualKeyboard::open(WaylandConnection& connection) {
    if (!connection.offers(zwp_virtual_keyboard_manager_v1_interface.name) || !connection.seat()) {
        return nullptr;
    }
    std::unique_ptr<VirtualKeyboard> keyboard(new VirtualKeyboard(connection));
    // A compositor may offer the protocol but refuse its use by ending the connection.
    return keyboard->sendKeymap() && connection.roundTrip() ? std::move(keyboard) : nullptr;
}

VirtualKeyboard::VirtualKeyboard(WaylandConnection& connection)
    : connection_(connection), manager_(static_cast<zwp_virtual_keyboard_manager_v1*>(
                                   connection.bind(zwp_virtual_keyboard_manager_v1_interface, 1))),
      keyboard_(
          zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(manager_, connection.seat())) {
    connection.onLoss([this] {
        if (onChange_) {
            onChange_();
        }
    });
}

VirtualKeyboard::~VirtualKeyboard() {
    zwp_virtual_keyboard_v1_destroy(keyboard_);
    zwp_virtual_keyboard_manager_v1_destroy(manager_);
    connection_.flush();
}

std::string VirtualKeyboard::reasonForUnavailability() const {
    return connection_.isAlive() ? "" : "the connection to the compositor has ended";
}

bool VirtualKeyboard::isReady() const {
    return connection_.isAlive();
}

bool VirtualKeyboard::sendKeymap() {
    const auto keymap = americanKeymap();
    if (!keymap) {
        return false;
    }
    const std::unique_ptr<char, decltype(&std::free)> text(
        xkb_keymap_get_as_string(keymap.get(), XKB_KEYMAP_FORMAT_TEXT_V1), &std::free);
    const auto file = text ? memoryFile(text.get()) : FileDescriptor();
    if (!file) {
        return false;
    }
    zwp_virtual_keyboard_v1_keymap(keyboard_, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file.get(),
                                   static_cast<std::uint32_t>(std::strlen(text.get()) + 1));
    state_.reset(xkb_state_new(keymap.get()));
    return state_ != nullptr;
}

bool VirtualKeyboard::send(KeyCode key, bool isDown) {
    if (!isReady()) {
        return false;
    }
    zwp_virtual_keyboard_v1_key(keyboard_, millisecondsNow(), key,
                                isDown ? WL_KEYBOARD_KEY_STATE_PRESSED
                                       : WL_KEYBOARD_KEY_STATE_RELEASED);
    // The compositor does not derive the modifiers from the keys of a virtual keyboard.
    xkb_state_update_key(state_.get(), key + keycodeOffset, isDown ? XKB_KEY_DOWN : XKB_KEY_UP);
    const auto part = [this](xkb_state_component component) {
        return xkb_state_serialize_mods(state_.get(), component);
    };
    zwp_virtual_keyboard_v1_modifiers(keyboard_, part(XKB_STATE_MODS_DEPRESSED),
                                      part(XKB_STATE_MODS_LATCHED), part(XKB_STATE_MODS_LOCKED),
                                      /*group=*/0);
    connection_.flush();
    return isReady();
}

} // namespace orlune
