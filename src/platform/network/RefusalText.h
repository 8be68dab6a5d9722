// What a refused opening handshake says to a person. A pure function, from any thread.
#pragma once

#include "platform/WebSocket.h"

#include <string>
#include <string_view>
#include <vector>

namespace orlune {

/// The HTTP status, the service's `dg-error` header and the `err_msg` of its JSON body, each where
/// there is one, on one line of bounded length. The value of a header in `secrets` is not repeated,
/// even if the service echoes it.
std::string refusalText(unsigned status, std::string_view reason, std::string_view errorHeader,
                        std::string_view body,
                        const std::vector<WebSocketRequest::Header>& secrets);

} // namespace orlune
