// Synthetic keys through the XTEST extension, on X connections of its own. Main thread, with Qt's
// loop running. Presses are carried out when `post` returns; the release follows 30 ms later by
// itself. A display that is gone or lets nobody type yields no source, and posting does nothing.
#pragma once

#include "platform/KeyEventPosting.h"
#include "platform/linux/paste/PasteKeys.h"
#include "platform/linux/x11/KeyboardLayout.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace orlune {

class DelayedKeyReleases;
class XConnection;

class XTestKeyPoster final : public KeyEventPosting {
  public:
    using Keycode = KeyboardLayout::Keycode; ///< X's, not the virtual ones

    /// Each may be left empty. All are called on the main thread.
    struct Hooks {
        /// Before Shift-Insert, which pastes the primary selection in many terminals: takes it
        /// with the clipboard's text. False when somebody else keeps it; the chord is then not
        /// sent, for it would paste that.
        std::function<bool()> ownPrimarySelection = {};
        /// Right before the first synthetic key, and once the server has carried out the last.
        std::function<void()> willPost = {};
        std::function<void()> didPost = {};
        /// Keys the user holds that are now up as far as any program can tell. They are never
        /// pressed again: a user who lets go in between would be left with a stuck key.
        std::function<void(const std::vector<Keycode>&)> onModifiersReleased = {};
    };

    /// `terminals`: further window classes in which Shift-Insert pastes. An empty display name
    /// means the DISPLAY of the environment.
    XTestKeyPoster(std::vector<std::string> terminals, Hooks hooks, std::string displayName = {});
    /// Lets go of every key that is still down.
    ~XTestKeyPoster() override;

    void prepare() override {}
    void rest() override {}
    std::optional<EventSource> createSource(EventSourceState state) override;
    std::optional<KeyboardEvent> createKeyboardEvent(const EventSource& source,
                                                     std::uint16_t virtualKey,
                                                     bool isKeyDown) override;
    /// A key-up releases what its key-down pressed, and nothing when that pressed nothing.
    bool post(EventTapLocation location, const KeyboardEvent& event) override;

  private:
    struct Chord {
        std::vector<Keycode> modifiers;
        Keycode key;
    };

    bool connect();
    bool press(const KeyboardEvent& event);
    bool release(const KeyboardEvent& event);
    std::optional<Chord> pasteChord(const KeyboardLayout& layout) const;
    std::optional<Chord> plainChord(const KeyboardEvent& event, const KeyboardLayout& layout) const;

    PasteKeys pasteKeys_;
    Hooks hooks_;
    std::string displayName_;
    std::unique_ptr<XConnection> connection_;
    std::unique_ptr<DelayedKeyReleases> releases_;
    std::map<std::uint16_t, Chord> down_; ///< by virtual key
};

} // namespace orlune
