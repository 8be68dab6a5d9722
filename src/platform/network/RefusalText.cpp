#include "platform/network/RefusalText.h"

#include "platform/network/PlainLine.h"

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>

#include <cstddef>

namespace orlune {

namespace {

using Headers = std::vector<WebSocketRequest::Header>;

/// A shorter part of a header is not a secret, and would also match ordinary words.
constexpr std::size_t shortestSecret = 4;

std::string withoutSecret(std::string text, std::string_view secret) {
    constexpr std::string_view mask = "…";
    if (secret.size() >= shortestSecret) {
        for (auto found = text.find(secret); found != std::string::npos;
             found = text.find(secret, found + mask.size())) {
            text.replace(found, secret.size(), mask);
        }
    }
    return text;
}

/// Removes whole values, and the part after a scheme's name in them ("Token …").
std::string withoutSecrets(std::string text, const Headers& secrets) {
    for (const auto& header : secrets) {
        text = withoutSecret(std::move(text), header.value);
        const auto space = header.value.find(' ');
        if (space != std::string::npos) {
            text = withoutSecret(std::move(text), std::string_view(header.value).substr(space + 1));
        }
    }
    return text;
}

std::string messageOf(std::string_view body, const std::string& name) {
    boost::system::error_code error;
    const auto json = boost::json::parse(boost::json::string_view(body.data(), body.size()), error);
    const auto* object = error || name.empty() ? nullptr : json.if_object();
    const auto* member = object ? object->if_contains(name) : nullptr;
    const auto* message = member ? member->if_string() : nullptr;
    return message ? std::string(message->data(), message->size()) : std::string();
}

} // namespace

std::string refusalText(unsigned status, std::string_view reason, std::string_view errorHeader,
                        std::string_view body, const WebSocketRequest& request) {
    const auto& secrets = request.headers;
    std::string text = "The connection was refused (HTTP " + std::to_string(status);
    if (!reason.empty()) {
        text += " " + plainLine(withoutSecrets(std::string(reason), secrets));
    }
    text += ")";
    const auto message = messageOf(body, request.refusalReason.member);
    if (!errorHeader.empty()) {
        text += ": " + plainLine(withoutSecrets(std::string(errorHeader), secrets));
    }
    if (!message.empty() && message != errorHeader) {
        text += ": " + plainLine(withoutSecrets(message, secrets));
    }
    return text;
}

} // namespace orlune
