#include "platform/linux/windows/WorkArea.h"

#include "platform/linux/x11/QtConnection.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string>
#include <xcb/xcb.h>

namespace orlune {

namespace {

/// More than any real number of windows or monitors.
constexpr std::uint32_t longestList = 4096;

constexpr std::size_t plainStrutLength = 4;
constexpr std::size_t partialStrutLength = 12;

/// A requested property of 32-bit numbers.
class NumbersRequest {
  public:
    NumbersRequest(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property,
                   std::uint32_t limit = longestList)
        : connection_(connection), cookie_(xcb_get_property(connection, /*delete=*/0, window,
                                                            property, XCB_ATOM_ANY, 0, limit)) {}

    /// Waits for the answer, once. Empty when there is no such property.
    std::span<const std::uint32_t> numbers() {
        reply_.reset(xcb_get_property_reply(connection_, cookie_, nullptr));
        if (!reply_ || reply_->format != 32) {
            return {};
        }
        return {static_cast<const std::uint32_t*>(xcb_get_property_value(reply_.get())),
                reply_->value_len};
    }

  private:
    xcb_connection_t* connection_;
    xcb_get_property_cookie_t cookie_;
    OwnedReply<xcb_get_property_reply_t> reply_;
};

std::optional<Rect> intersection(const Rect& one, const Rect& other) {
    const double x = std::max(one.x, other.x);
    const double y = std::max(one.y, other.y);
    const double right = std::min(one.x + one.width, other.x + other.width);
    const double bottom = std::min(one.y + one.height, other.y + other.height);
    if (right <= x || bottom <= y) {
        return std::nullopt;
    }
    return Rect{.x = x, .y = y, .width = right - x, .height = bottom - y};
}

/// `numbers` contains the widths at the four edges and, optionally, for each edge the first and
/// last pixel along it.
void addStruts(std::vector<WorkArea::Strut>& struts, std::span<const std::uint32_t> numbers,
               const Rect& desktop) {
    using Edge = WorkArea::Edge;
    constexpr std::array edges{Edge::left, Edge::right, Edge::top, Edge::bottom};
    if (numbers.size() < plainStrutLength) {
        return;
    }
    for (std::size_t index = 0; index < edges.size(); ++index) {
        const double thickness = numbers[index];
        if (thickness <= 0) {
            continue;
        }
        const bool isUpright = edges.at(index) == Edge::left || edges.at(index) == Edge::right;
        double start = 0;
        double end = isUpright ? desktop.height : desktop.width;
        if (numbers.size() >= partialStrutLength) {
            start = numbers[plainStrutLength + 2 * index];
            end = numbers[plainStrutLength + 2 * index + 1] + 1.0; // the last pixel is included
        }
        Rect area = isUpright ? Rect{0, start, thickness, end - start}
                              : Rect{start, 0, end - start, thickness};
        if (edges.at(index) == Edge::right) {
            area.x = desktop.width - thickness;
        } else if (edges.at(index) == Edge::bottom) {
            area.y = desktop.height - thickness;
        }
        struts.push_back({edges.at(index), area});
    }
}

/// What the strut leaves of `monitor`.
Rect cut(Rect monitor, const WorkArea::Strut& strut) {
    const double right = monitor.x + monitor.width;
    const double bottom = monitor.y + monitor.height;
    switch (strut.edge) {
    case WorkArea::Edge::left:
        monitor.x = std::max(monitor.x, strut.area.x + strut.area.width);
        monitor.width = right - monitor.x;
        break;
    case WorkArea::Edge::top:
        monitor.y = std::max(monitor.y, strut.area.y + strut.area.height);
        monitor.height = bottom - monitor.y;
        break;
    case WorkArea::Edge::right:
        monitor.width = std::min(right, strut.area.x) - monitor.x;
        break;
    case WorkArea::Edge::bottom:
        monitor.height = std::min(bottom, strut.area.y) - monitor.y;
        break;
    }
    return monitor;
}

} // namespace

WorkArea WorkArea::read(xcb_connection_t* connection) {
    WorkArea found;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const auto atom = [&](std::string_view name) {
        return atomNamed(connection, name, /*onlyIfExists=*/true);
    };
    const auto sizeRequest = xcb_get_geometry(connection, root);
    const auto partial = atom("_NET_WM_STRUT_PARTIAL");
    const auto plain = atom("_NET_WM_STRUT");
    NumbersRequest windowRequest(connection, root, atom("_NET_CLIENT_LIST"));
    NumbersRequest workspaceRequest(connection, root, atom("_NET_CURRENT_DESKTOP"));
    const OwnedReply<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(connection, sizeRequest, nullptr));
    const Rect desktop{.x = 0,
                       .y = 0,
                       .width = size ? static_cast<double>(size->width) : 0,
                       .height = size ? static_cast<double>(size->height) : 0};

    // Requested for all windows at once, which takes a single round trip.
    std::vector<NumbersRequest> strutRequests;
    const auto windows = windowRequest.numbers();
    strutRequests.reserve(2 * windows.size());
    for (const auto window : windows) {
        strutRequests.emplace_back(connection, window, partial, partialStrutLength);
        strutRequests.emplace_back(connection, window, plain, plainStrutLength);
    }
    for (std::size_t index = 0; index + 1 < strutRequests.size(); index += 2) {
        const auto partialNumbers = strutRequests[index].numbers();
        const auto plainNumbers = strutRequests[index + 1].numbers();
        addStruts(found.struts, partialNumbers.empty() ? plainNumbers : partialNumbers, desktop);
    }

    const auto workspace = workspaceRequest.numbers();
    const auto number = workspace.empty() ? 0 : workspace.front();
    if (const auto leftOver = atom("_GTK_WORKAREAS_D" + std::to_string(number))) {
        NumbersRequest request(connection, root, leftOver);
        const auto numbers = request.numbers();
        for (std::size_t index = 0; index + 3 < numbers.size(); index += 4) {
            found.leftOver.push_back(
                {static_cast<double>(numbers[index]), static_cast<double>(numbers[index + 1]),
                 static_cast<double>(numbers[index + 2]), static_cast<double>(numbers[index + 3])});
        }
    }
    return found;
}

Rect WorkArea::within(const Rect& monitor) const {
    Rect area = monitor;
    for (const auto& strut : struts) {
        if (!intersection(monitor, strut.area)) {
            continue;
        }
        const auto rest = cut(area, strut);
        if (rest.width > 0 && rest.height > 0) {
            area = rest;
        }
    }
    for (const auto& rect : leftOver) {
        area = intersection(area, rect).value_or(area);
    }
    return area;
}

} // namespace orlune
