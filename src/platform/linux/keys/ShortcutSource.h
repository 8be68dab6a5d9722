// Reports the shortcut, and Escape, while another program has the keyboard, on desktops that tell a
// program about its own shortcuts only. Main thread, with Qt's loop running; the observer is called
// there, and from within `releaseAll` only of these calls. None waits for the user or the desktop.
#pragma once

#include "platform/KeyCombination.h"
#include "platform/KeyEvents.h"

#include <functional>
#include <string>

namespace orlune {

class ShortcutSource {
  public:
    struct Observer {
        /// The edges of the watched keys, as `ShortcutEdges` builds them. A release that the
        /// desktop loses is reported at the next press, or when the source loses its desktop.
        std::function<void(const KeyEvent&)> onKey;
        /// An answer of `reasonForUnavailability` or `reportsReleases` may have changed.
        std::function<void()> onChange;
    };

    virtual ~ShortcutSource() = default;

    /// For the log and the report of `orlune doctor`, such as "sway".
    virtual std::string name() const = 0;
    /// The desktop has turned out not to offer this. May change when the desktop's service starts.
    virtual bool isMissing() const { return false; }
    /// Starts to report, replacing the observer before.
    virtual void setObserver(Observer observer) = 0;
    /// Watches this shortcut instead of the one before. Opens no dialog: where the desktop wants
    /// the user's consent first, the shortcut stays unavailable until `requestAccess`.
    virtual void watch(const KeyCombination& shortcut) = 0;
    /// Escape is only taken from other programs while it is wanted: during a dictation.
    virtual void watchEscape(bool isWanted) = 0;
    /// Opens the desktop's dialogs, if it has any, and binds the shortcut.
    virtual void requestAccess() = 0;
    /// Why the shortcut is not seen, for a person; empty while it is.
    virtual std::string reasonForUnavailability() const = 0;
    /// Whether the desktop reports when the watched shortcut is let go. Without it, holding cannot
    /// work.
    virtual bool reportsReleases() const = 0;
    /// The screen is about to be locked: reports what is down as released.
    virtual void releaseAll() = 0;
};

} // namespace orlune
