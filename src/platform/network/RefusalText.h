// The text for the user when an opening handshake was refused. A pure function, usable on any
// thread.
#pragma once

#include "platform/WebSocket.h"

#include <string>
#include <string_view>
#include <vector>

namespace orlune {

/// The HTTP status, the service's `dg-error` header and the `err_msg` of its JSON body, each if
/// present, on one line of bounded length. The values of headers in `secrets` are removed, even if
/// the service echoes them.
std::string refusalText(unsigned status, std::string_view reason, std::string_view errorHeader,
                        std::string_view body,
                        const std::vector<WebSocketRequest::Header>& secrets);

} // namespace orlune
