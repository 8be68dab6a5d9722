#include "platform/linux/paste/XTestKeyPoster.h"

#include "platform/VirtualKey.h"
#include "platform/linux/keys/VirtualKeyCodes.h"
#include "platform/linux/paste/DelayedKeyReleases.h"
#include "platform/linux/x11/FocusedWindow.h"
#include "platform/linux/x11/ModifierSymbols.h"
#include "platform/linux/x11/XConnection.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <algorithm>
#include <array>
#include <limits>
#include <type_traits>
#include <utility>

namespace orlune {

namespace {

using Keycode = XTestKeyPoster::Keycode;

constexpr auto chordFlags = ModifierFlags::shift | ModifierFlags::control | ModifierFlags::option
                            | ModifierFlags::command | ModifierFlags::function;

std::optional<Keycode> modifierKey(const KeyboardLayout& layout, ModifierFlags flag) {
    const auto& symbols = symbolsOf(flag);
    const auto left = layout.keycodeOf(symbols.left);
    return left ? left : layout.keycodeOf(symbols.right);
}

std::optional<Keycode> keyInPlace(std::uint16_t virtualKey) {
    const auto keycode = keycodeForVirtualKey(virtualKey);
    if (!keycode || *keycode > std::numeric_limits<Keycode>::max()) {
        return std::nullopt;
    }
    return static_cast<Keycode>(*keycode);
}

/// Alt and its like, which open a menu when they are tapped alone.
bool opensMenus(const KeyboardLayout& layout, Keycode key) {
    constexpr std::array<KeySym, 6> symbols = {XK_Alt_L,  XK_Alt_R,   XK_Meta_L,
                                               XK_Meta_R, XK_Super_L, XK_Super_R};
    return std::ranges::find(symbols, layout.symbolOf(key)) != symbols.end();
}

bool holds(const std::vector<Keycode>& keys, Keycode key) {
    return std::ranges::find(keys, key) != keys.end();
}

template <typename... Arguments>
void call(const std::function<void(Arguments...)>& hook,
          const std::type_identity_t<Arguments>&... arguments) {
    if (hook) {
        hook(arguments...);
    }
}

/// Sends keys over one connection. Synchronised, each is carried out before the next is sent.
class Keystrokes {
  public:
    Keystrokes(XConnection& connection, bool synchronised)
        : connection_(connection), synchronised_(synchronised) {}

    void press(Keycode key) { send(key, /*isDown=*/True); }
    void release(Keycode key) { send(key, /*isDown=*/False); }

  private:
    void send(Keycode key, Bool isDown) {
        if (!connection_.isAlive()) {
            return;
        }
        XTestFakeKeyEvent(connection_.display(), key, isDown, CurrentTime);
        if (synchronised_) {
            connection_.roundTrip();
        } else {
            XFlush(connection_.display());
        }
    }

    XConnection& connection_;
    bool synchronised_;
};

/// Lets go of what the user holds, so that no program takes it for a tap.
void releaseHeld(Keystrokes& keys, const KeyboardLayout& layout, std::vector<Keycode> held) {
    const auto menuKeys =
        std::ranges::partition(held, [&](Keycode key) { return !opensMenus(layout, key); });
    // The quiet ones first: with Shift down, another modifier may switch the layout.
    for (const auto key : std::vector(held.begin(), menuKeys.begin())) {
        keys.release(key);
    }
    // Control in between, or Alt and Super would have been tapped alone.
    const auto control = modifierKey(layout, ModifierFlags::control);
    if (!menuKeys.empty() && control) {
        keys.press(*control);
    }
    for (const auto key : menuKeys) {
        keys.release(key);
    }
    if (!menuKeys.empty() && control) {
        keys.release(*control);
    }
}

} // namespace

XTestKeyPoster::XTestKeyPoster(std::vector<std::string> terminals, Hooks hooks,
                               std::string displayName)
    : pasteKeys_(std::move(terminals)), hooks_(std::move(hooks)),
      displayName_(std::move(displayName)) {}

XTestKeyPoster::~XTestKeyPoster() {
    // Releases that are under way are carried out before their connection closes.
    if (connection_) {
        Keystrokes keys(*connection_, /*synchronised=*/true);
        for (const auto& [virtualKey, chord] : down_) {
            keys.release(chord.key);
            std::ranges::for_each(chord.modifiers, [&](Keycode key) { keys.release(key); });
        }
    }
}

bool XTestKeyPoster::connect() {
    if (connection_ && connection_->isAlive() && releases_ && releases_->connection().isAlive()) {
        return true;
    }
    if (releases_) {
        releases_->underWay(); // announces the end of what was lost with the connection
    }
    connection_ = XConnection::open(displayName_);
    releases_ = DelayedKeyReleases::open(displayName_, [this] {
        if (down_.empty()) {
            call(hooks_.didPost);
        }
    });
    int ignored = 0;
    if (!connection_ || !releases_
        || !XTestQueryExtension(connection_->display(), &ignored, &ignored, &ignored, &ignored)) {
        connection_.reset();
        releases_.reset();
        return false;
    }
    // A program that grabs the whole server must not hold up the main thread.
    XTestGrabControl(connection_->display(), /*impervious=*/True);
    XTestGrabControl(releases_->connection().display(), /*impervious=*/True);
    XFlush(releases_->connection().display());
    return connection_->roundTrip();
}

std::optional<EventSource> XTestKeyPoster::createSource(EventSourceState state) {
    if (!connect() || !connection_->roundTrip()) {
        return std::nullopt;
    }
    return EventSource{.state = state};
}

std::optional<KeyboardEvent>
XTestKeyPoster::createKeyboardEvent(const EventSource&, std::uint16_t virtualKey, bool isKeyDown) {
    if (!keyInPlace(virtualKey)) {
        return std::nullopt;
    }
    return KeyboardEvent{
        .virtualKey = virtualKey, .isKeyDown = isKeyDown, .flags = ModifierFlags::none};
}

bool XTestKeyPoster::post(EventTapLocation, const KeyboardEvent& event) {
    return connect() && (event.isKeyDown ? press(event) : release(event));
}

std::optional<XTestKeyPoster::Chord>
XTestKeyPoster::pasteChord(const KeyboardLayout& layout) const {
    const auto control = modifierKey(layout, ModifierFlags::control);
    const auto shift = modifierKey(layout, ModifierFlags::shift);
    const auto v = layout.keycodeOf(XK_v);
    const auto wanted = pasteKeys_.of(classOfFocusedWindow(connection_->display()));
    if (control && v && wanted == PasteKeys::Chord::controlV) {
        return Chord{.modifiers = {*control}, .key = *v};
    }
    if (control && shift && v && wanted == PasteKeys::Chord::controlShiftV) {
        return Chord{.modifiers = {*control, *shift}, .key = *v};
    }
    const auto named = layout.keycodeOf(XK_Insert);
    const auto insert = named ? named : keyInPlace(virtual_key::insert);
    if (!shift || !insert || (hooks_.ownPrimarySelection && !hooks_.ownPrimarySelection())) {
        return std::nullopt;
    }
    return Chord{.modifiers = {*shift}, .key = *insert};
}

std::optional<XTestKeyPoster::Chord>
XTestKeyPoster::plainChord(const KeyboardEvent& event, const KeyboardLayout& layout) const {
    const auto key = keyInPlace(event.virtualKey);
    if (!key) {
        return std::nullopt;
    }
    Chord chord{.modifiers = {}, .key = *key};
    for (const auto& symbols : modifierSymbols) {
        const auto modifier = modifierKey(layout, symbols.flag);
        if (contains(event.flags, symbols.flag) && modifier && *modifier != *key) {
            chord.modifiers.push_back(*modifier);
        }
    }
    return chord;
}

bool XTestKeyPoster::press(const KeyboardEvent& event) {
    const auto layout = KeyboardLayout::read(connection_->display());
    if (!layout || down_.contains(event.virtualKey)) {
        return false;
    }
    const bool isPaste =
        event.virtualKey == virtual_key::v && (event.flags & chordFlags) == ModifierFlags::command;
    auto chord = isPaste ? pasteChord(*layout) : plainChord(event, *layout);
    if (!chord) {
        return false;
    }

    releases_->outliveProcess();
    auto ours = releases_->underWay();
    const bool areReleasesUnderWay = !ours.empty();
    if (down_.empty() && !areReleasesUnderWay) {
        call(hooks_.willPost);
    }
    for (const auto& [virtualKey, pressed] : down_) {
        ours.push_back(pressed.key);
        std::erase_if(chord->modifiers, [&](Keycode key) { return key == pressed.key; });
    }
    // Behind releases that the server has yet to do, the keys queue up; nobody waits for them.
    Keystrokes keys(areReleasesUnderWay ? releases_->connection() : *connection_,
                    /*synchronised=*/!areReleasesUnderWay);

    auto held = layout->heldModifiers();
    std::erase_if(held, [&](Keycode key) { return holds(ours, key); });
    releaseHeld(keys, *layout, held);
    if (layout->isDown(chord->key) && !holds(ours, chord->key)) {
        keys.release(chord->key);
    }
    for (const auto key : chord->modifiers) {
        keys.press(key);
    }
    keys.press(chord->key);
    down_.emplace(event.virtualKey, std::move(*chord));
    if (!held.empty()) {
        call(hooks_.onModifiersReleased, held);
    }
    return connection_->isAlive();
}

bool XTestKeyPoster::release(const KeyboardEvent& event) {
    const auto pressed = down_.extract(event.virtualKey);
    if (pressed.empty()) {
        return false;
    }
    // The other way round than they went down.
    auto keys = pressed.mapped().modifiers;
    keys.push_back(pressed.mapped().key);
    std::ranges::reverse(keys);
    releases_->schedule(keys);
    return true;
}

} // namespace orlune
