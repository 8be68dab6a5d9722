// Qt's own connection to the X display: for questions about it, and for the properties of Qt's
// windows, which have to keep their order with Qt's requests. Nobody selects events on it. Main
// thread.
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

/// Null where Qt shows no windows, or not on X11.
xcb_connection_t* qtConnection();

/// A name known to the X server; 0 when it is not yet and shall not be made up.
std::uint32_t atomNamed(xcb_connection_t* connection, std::string_view name, bool onlyIfExists);

} // namespace orlune
