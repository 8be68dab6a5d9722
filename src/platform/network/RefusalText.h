// The text for the user when an opening handshake was refused. A pure function, usable on any
// thread.
#pragma once

#include "platform/WebSocket.h"

#include <string>
#include <string_view>

namespace orlune {

/// The HTTP status, the header and the member of the JSON body that the request's `refusalReason`
/// names, each if present, on one line of bounded length. `errorHeader` is that header's value. The
/// values of the request's own headers are removed, even if the service echoes them.
std::string refusalText(unsigned status, std::string_view reason, std::string_view errorHeader,
                        std::string_view body, const WebSocketRequest& request);

} // namespace orlune
