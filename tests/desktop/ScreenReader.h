// Orlune's windows as a person meets them: what a screen reader is told, and a pointer to click
// there. Speaks to the running program over the desktop's accessibility bus, as every assistive
// program does. Main thread; waiting turns Qt's loop.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlune::desktop {

class ScreenReader {
  public:
    /// Tells the session that a screen reader is there; before the program starts, which looks
    /// then.
    ScreenReader();

    /// The bus it listens on, for a program that does not find it on its session's bus.
    std::string busAddress() const;

    struct Element {
        std::string window; ///< the title of the window it is in
        std::string role;   ///< as newer versions of the bus name it: "button", "password text"
        std::string name;
        std::string description;
        std::string text;                        ///< what is in an editor
        int x = 0, y = 0, width = 0, height = 0; ///< on the screen, in pixels
        bool isEnabled, isFocusable, isFocused, isChecked, isSelected;
        bool isActive; ///< the window in front
    };

    /// All that shows in the program's windows and has a name or can have the focus, in reading
    /// order.
    std::vector<Element> elements() const;
    /// The first one of this name.
    std::optional<Element> find(std::string_view name) const;
    /// The one that has the keyboard.
    std::optional<Element> focused() const;

    /// The title of the window in front, once the program knows where it lies; empty when none is.
    std::string activeWindow() const;
    /// Whether anything that is read contains this.
    bool reads(std::string_view part) const;

    /// Waits for an element of this name. Throws when it does not come.
    Element await(std::string_view name) const;
    /// Whether such an element is there, and is gone, within the deadline of `waitUntil`.
    [[nodiscard]] bool shows(std::string_view name) const;
    [[nodiscard]] bool hides(std::string_view name) const;
};

/// What the program tells of its own accord from now on, in order, as the loop turns.
class Announcements {
  public:
    Announcements();
    ~Announcements();

    /// The names of what got the keyboard.
    const std::vector<std::string>& focused() const { return focused_; }
    /// The names of what changed its name, as every text does that changes.
    const std::vector<std::string>& names() const { return names_; }
    /// All that was entered into editors, and all that was removed.
    const std::string& typed() const { return typed_; }

  private:
    struct Listener;
    std::unique_ptr<Listener> listener_;
    std::vector<std::string> focused_;
    std::vector<std::string> names_;
    std::string typed_;
};

/// A click in the middle of what is there, once it rests and can be clicked.
enum class MouseButton { left = 1, middle, right };
void click(const ScreenReader& reader, std::string_view name,
           MouseButton button = MouseButton::left);

} // namespace orlune::desktop
