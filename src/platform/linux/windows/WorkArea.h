// What the panels and docks of an X desktop leave of each monitor. A value, read from the display
// at one moment; everything is in device pixels, from the desktop's upper left corner.
#pragma once

#include "platform/Screens.h"

#include <vector>

struct xcb_connection_t;

namespace orlune {

struct WorkArea {
    enum class Edge { left, right, top, bottom };

    /// The space that a panel reserves along one edge of the whole desktop, on any monitor.
    struct Strut {
        Edge edge;
        Rect area;

        bool operator==(const Strut&) const = default;
    };

    std::vector<Strut> struts;
    /// The free area of each monitor according to the window manager; few publish it.
    std::vector<Rect> leftOver;

    /// Queries the X server. Windows that vanish meanwhile are not an error.
    static WorkArea read(xcb_connection_t* connection);

    /// What is left of one monitor. Panels that would leave nothing of it belong to another
    /// monitor.
    Rect within(const Rect& monitor) const;
};

} // namespace orlune
