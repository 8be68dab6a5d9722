// Orlune's windows as the user sees them: what a screen reader reads, and a pointer to click there.
// Uses the desktop's accessibility bus, like every assistive program. Main thread; waiting runs
// Qt's loop.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlune::desktop {

class ScreenReader {
  public:
    /// Announces a screen reader to the session. To be created before the program, which checks at
    /// its start.
    ScreenReader();

    /// The bus it listens on, for a program that cannot find it through its session's bus.
    std::string busAddress() const;

    struct Element {
        std::string window; ///< the title of its window
        std::string role;   ///< as newer versions of the bus name it: "button", "password text"
        std::string name;
        std::string description;
        std::string text;                        ///< the text of an editor
        int x = 0, y = 0, width = 0, height = 0; ///< on the screen, in pixels
        bool isEnabled, isFocusable, isFocused, isChecked, isSelected;
        bool isActive; ///< the front window
    };

    /// All visible elements of the program's windows that have a name or can have the focus, in
    /// reading order.
    std::vector<Element> elements() const;
    /// The first one with this name.
    std::optional<Element> find(std::string_view name) const;
    /// The one that has the focus.
    std::optional<Element> focused() const;

    /// The title of the front window, once the program knows its position; empty when there is
    /// none.
    std::string activeWindow() const;
    /// Whether any text contains this.
    bool reads(std::string_view part) const;

    /// Waits for an element with this name. Throws on timeout.
    Element await(std::string_view name) const;
    /// Whether such an element appears, or vanishes, within the deadline of `waitUntil`.
    [[nodiscard]] bool shows(std::string_view name) const;
    [[nodiscard]] bool hides(std::string_view name) const;
};

/// The events that the program reports from now on, in order, while the loop runs.
class Announcements {
  public:
    Announcements();
    ~Announcements();

    /// The names of the elements that received the focus.
    const std::vector<std::string>& focused() const { return focused_; }
    /// The names of the elements whose name changed, as that of every changing text does.
    const std::vector<std::string>& names() const { return names_; }
    /// All text that was entered into editors or removed from them.
    const std::string& typed() const { return typed_; }

  private:
    struct Listener;
    std::unique_ptr<Listener> listener_;
    std::vector<std::string> focused_;
    std::vector<std::string> names_;
    std::string typed_;
};

/// Clicks in the centre of the element, once it no longer moves and can be clicked.
enum class MouseButton { left = 1, middle, right };
void click(const ScreenReader& reader, std::string_view name,
           MouseButton button = MouseButton::left);

} // namespace orlune::desktop
