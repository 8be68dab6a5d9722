#include "localservice/Handshake.h"

#include "localservice/CompactJson.h"

#include <boost/beast/version.hpp>
#include <boost/beast/websocket/rfc6455.hpp>
#include <boost/json/object.hpp>
#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

#include <array>

namespace orlune::localservice {
namespace {

namespace http = boost::beast::http;

struct QueryItem {
    std::string_view key;
    std::string_view value;
};

/// The required query. Other values would request audio or answers that this service does not
/// support.
constexpr std::array queryItems = {
    QueryItem{"model", "nova-3"},      QueryItem{"language", "en-US"},
    QueryItem{"encoding", "linear16"}, QueryItem{"sample_rate", "16000"},
    QueryItem{"channels", "1"},        QueryItem{"interim_results", "true"},
    QueryItem{"smart_format", "true"}, QueryItem{"punctuate", "true"},
    QueryItem{"endpointing", "300"},   QueryItem{"vad_events", "true"},
};

Refusal badRequest(std::string message) {
    return {.status = 400, .code = "Bad Request", .message = std::move(message)};
}

std::size_t count(const HandshakeRequest& request, http::field field) {
    const auto range = request.equal_range(field);
    return static_cast<std::size_t>(std::distance(range.first, range.second));
}

std::optional<Refusal> checkQuery(const boost::urls::url_view& url) {
    const auto parameters = url.params();
    for (const auto& item : queryItems) {
        const auto times = parameters.count(item.key);
        const std::string key(item.key);
        if (times == 0) {
            return badRequest("The query item " + key + " is missing.");
        }
        if (times > 1) {
            return badRequest("The query item " + key + " stands more than once.");
        }
        const auto given = (*parameters.find(item.key)).value;
        if (given != item.value) {
            return badRequest("The query item " + key + " must be " + std::string(item.value)
                              + ".");
        }
    }
    if (parameters.size() != queryItems.size()) {
        return badRequest("The query has an item that is not known.");
    }
    return std::nullopt;
}

} // namespace

Authorization checkAuthorization(const HandshakeRequest& request,
                                 const std::optional<std::string>& requiredKey) {
    Authorization authorization;
    if (count(request, http::field::authorization) != 1) {
        return authorization;
    }
    const std::string_view value = request[http::field::authorization];
    const auto space = value.find(' ');
    authorization.scheme = value.substr(0, space);
    const auto key = space == std::string_view::npos ? std::string_view() : value.substr(space + 1);
    authorization.accepted = authorization.scheme == "Token" && !key.empty()
                             && key.find(' ') == std::string_view::npos
                             && (!requiredKey || key == *requiredKey);
    return authorization;
}

std::optional<Refusal> checkHandshake(const HandshakeRequest& request,
                                      const Authorization& authorization) {
    const auto url = boost::urls::parse_origin_form(request.target());
    if (!url) {
        return badRequest("The request target cannot be read.");
    }
    if (count(request, http::field::host) != 1) {
        return badRequest("There must be exactly one Host header.");
    }
    if (url->encoded_path() != "/v1/listen") {
        return Refusal{
            .status = 404, .code = "Not Found", .message = "There is only /v1/listen here."};
    }
    if (request.method() != http::verb::get) {
        return Refusal{
            .status = 405, .code = "Method Not Allowed", .message = "A stream is opened with GET."};
    }
    if (!authorization.accepted) {
        return Refusal{.status = 401, .code = "INVALID_AUTH", .message = "Invalid credentials."};
    }
    if (auto refusal = checkQuery(*url)) {
        return refusal;
    }
    if (!boost::beast::websocket::is_upgrade(request)) {
        return badRequest("A stream needs a WebSocket upgrade.");
    }
    return std::nullopt;
}

HandshakeRefusal refusalResponse(const Refusal& refusal, std::string_view requestID) {
    HandshakeRefusal response;
    response.version(11);
    response.result(refusal.status);
    response.set(http::field::content_type, "application/json");
    response.set(http::field::connection, "close");
    response.set("dg-error", refusal.message);
    response.set("dg-request-id", requestID);
    const boost::json::object body{
        {"err_code", refusal.code}, {"err_msg", refusal.message}, {"request_id", requestID}};
    response.body() = compactJson(body);
    response.prepare_payload();
    return response;
}

} // namespace orlune::localservice
