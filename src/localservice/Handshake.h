#pragma once

// Decides whether a request opens a stream, and how it is refused otherwise.
// Free functions on values, safe on any thread. A refusal is a value with the exact text, which
// never contains the key.

#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>

#include <optional>
#include <string>

namespace orlune::localservice {

using HandshakeRequest = boost::beast::http::request<boost::beast::http::empty_body>;
using HandshakeRefusal = boost::beast::http::response<boost::beast::http::string_body>;

struct Refusal {
    unsigned status = 400;
    std::string code;    ///< as in "err_code", for example "INVALID_AUTH"
    std::string message; ///< as in "err_msg" and the header "dg-error"
};

/// The credentials of a request.
struct Authorization {
    std::string scheme;
    bool accepted = false;
};

/// Accepts only "Token" with a key: any key, unless one is required.
Authorization checkAuthorization(const HandshakeRequest& request,
                                 const std::optional<std::string>& requiredKey);

/// The first fault of the request; none when the stream may begin.
std::optional<Refusal> checkHandshake(const HandshakeRequest& request,
                                      const Authorization& authorization);

/// The real service's answer to a request that it refuses.
HandshakeRefusal refusalResponse(const Refusal& refusal, std::string_view requestID);

} // namespace orlune::localservice
