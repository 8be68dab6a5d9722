#pragma once

// Whether a request opens a stream, and what is answered when it does not.
// Free functions on values, safe on any thread. A refusal is a value with the exact text; the key
// is never in it.

#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>

#include <optional>
#include <string>

namespace orlune {

using HandshakeRequest = boost::beast::http::request<boost::beast::http::empty_body>;
using HandshakeRefusal = boost::beast::http::response<boost::beast::http::string_body>;

struct Refusal {
    unsigned status = 400;
    std::string code;    ///< as in "err_code", for example "INVALID_AUTH"
    std::string message; ///< as in "err_msg" and the header "dg-error"
};

/// How the request says who it is.
struct Authorization {
    std::string scheme;
    bool accepted = false;
};

/// Only "Token" with a key is accepted: any key, unless one is required.
Authorization checkAuthorization(const HandshakeRequest& request,
                                 const std::optional<std::string>& requiredKey);

/// What is wrong with the request, first fault first; nothing when the stream may begin.
std::optional<Refusal> checkHandshake(const HandshakeRequest& request,
                                      const Authorization& authorization);

/// The answer of the real service to a request that it refuses.
HandshakeRefusal refusalResponse(const Refusal& refusal, std::string_view requestID);

} // namespace orlune
