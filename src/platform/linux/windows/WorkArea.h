// What the panels and docks of an X desktop leave of each monitor. A value, read from the display
// at one moment; everything is in the display's own pixels, from the desktop's upper left corner.
#pragma once

#include "platform/Screens.h"

#include <vector>

struct xcb_connection_t;

namespace orlune {

struct WorkArea {
    enum class Edge { left, right, top, bottom };

    /// What a panel keeps free along one edge of the whole desktop, on any of its monitors.
    struct Strut {
        Edge edge;
        Rect area;

        bool operator==(const Strut&) const = default;
    };

    std::vector<Strut> struts;
    /// What the window manager itself says that is left, one for each monitor; few say so.
    std::vector<Rect> leftOver;

    /// Asks the X server. Windows that vanish meanwhile are ordinary.
    static WorkArea read(xcb_connection_t* connection);

    /// What is left of one monitor. Panels that would leave nothing of it belong to another.
    Rect within(const Rect& monitor) const;
};

} // namespace orlune
