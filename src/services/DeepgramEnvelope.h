// The parts of a transcription service's message that are read; private to `DeepgramService`. A
// member that is null counts as absent, one of another type makes the whole message invalid, other
// members are ignored.
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
