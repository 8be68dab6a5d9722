// What is read of one message of the transcription service; private to `DeepgramService`. A member
// that is null counts as absent, one of another type fails the whole message, members not named
// here are ignored.
#pragma once

#include "services/DeepgramService.h"

#include <optional>

namespace orlune {

struct DeepgramService::Alternative {
    std::optional<std::string> transcript;
};

struct DeepgramService::Channel {
    std::vector<Alternative> alternatives;
};

struct DeepgramService::Envelope {
    std::optional<std::string> type;
    std::optional<bool> isFinal;
    std::optional<Channel> channel;

    /// None when the bytes are not one JSON object (RFC 8259, UTF-8) of this shape.
    static std::optional<Envelope> decode(std::string_view data);
};

} // namespace orlune
