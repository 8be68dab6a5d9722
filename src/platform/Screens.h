// The screens, and the position of the pointer. Main thread. One unit is one logical pixel, y grows
// downwards, and the origin is that of the whole desktop.
#pragma once

#include <optional>
#include <vector>

namespace orlune {

struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    /// The left and upper edges belong to the rectangle, the right and lower ones do not.
    bool contains(Point point) const {
        return point.x >= x && point.x < x + width && point.y >= y && point.y < y + height;
    }

    bool operator==(const Rect&) const = default;
};

struct Screen {
    Rect frame;
    /// The frame without the desktop's panels and docks on this screen.
    Rect visibleFrame;

    bool operator==(const Screen&) const = default;
};

class Screens {
  public:
    virtual ~Screens() = default;

    virtual Point pointerLocation() = 0;
    /// In the system's order; empty when there are no screens.
    virtual std::vector<Screen> all() = 0;
    /// The desktop's primary screen.
    virtual std::optional<Screen> main() = 0;
};

} // namespace orlune
