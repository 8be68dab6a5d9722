#include "platform/linux/wayland/WaylandFacts.h"

#include "platform/linux/wayland/DataControlPasteboard.h"
#include "platform/linux/wayland/VirtualKeyboard.h"
#include "platform/linux/wayland/WaylandConnection.h"

namespace orlune {

std::optional<WaylandFacts> WaylandFacts::read() {
    const auto connection = WaylandConnection::open();
    if (!connection) {
        return std::nullopt;
    }
    return WaylandFacts{.hasVirtualKeyboard = VirtualKeyboard::open(*connection) != nullptr,
                        .hasDataControl = DataControlPasteboard::open(*connection) != nullptr,
                        .hasHyprlandShortcuts = connection->offers(hyprlandShortcuts, 1)};
}

} // namespace orlune
