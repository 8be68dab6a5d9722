// Orlune's windows as a person meets them: what a screen reader is told, and a pointer to click
// there. Speaks to the running program over the desktop's accessibility bus, as every assistive
// program does. Main thread; waiting turns Qt's loop.
#pragma once

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

    struct Element {
        std::string window; ///< the title of the window it is in
        std::string role;   ///< as the bus names it: "push button", "password text"
        std::string name;
        std::string description;
        std::string text;        ///< what is in an editor
        int x, y, width, height; ///< on the screen, in pixels
        bool isEnabled, isFocusable, isFocused, isChecked, isSelected;
    };

    /// All that shows in the program's windows, in reading order.
    std::vector<Element> elements() const;
    /// The first one of this name.
    std::optional<Element> find(std::string_view name) const;
    /// The one that has the keyboard.
    std::optional<Element> focused() const;

    /// Waits for an element of this name. Throws when it does not come.
    Element await(std::string_view name) const;
    /// Whether such an element is there, and is gone, within the deadline of `waitUntil`.
    [[nodiscard]] bool shows(std::string_view name) const;
    [[nodiscard]] bool hides(std::string_view name) const;
};

/// A click with the left button in the middle of what is there, once it rests and can be clicked.
void click(const ScreenReader& reader, std::string_view name);

} // namespace orlune::desktop
