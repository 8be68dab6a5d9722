// Qt's own connection to the X display: for queries, and for the properties of Qt's windows, whose
// requests must keep their order with Qt's. No events are selected on it. Main thread.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

struct xcb_connection_t;

namespace orlune {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
/// An answer of the X server.
template <typename Reply>
using OwnedReply = std::unique_ptr<Reply, FreeDeleter>;

/// Null when Qt shows no windows, or does not use X11.
xcb_connection_t* qtConnection();

/// The X server's atom for a name; 0 when it does not exist and `onlyIfExists` is set.
std::uint32_t atomNamed(xcb_connection_t* connection, std::string_view name, bool onlyIfExists);

} // namespace orlune
