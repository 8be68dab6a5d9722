#pragma once

// The messages of the live transcription service, as text ready to be sent, and the kind of a
// client's message. Free functions on values, safe on any thread; they cannot fail. All times are
// in seconds of audio.

#include "localservice/Recogniser.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlune::localservice {

/// One "Results" message: the current result for the audio from `start` to `start + duration`.
struct Results {
    double start = 0;
    double duration = 0;
    bool isFinal = false;     ///< no later result covers this part of the audio
    bool speechFinal = false; ///< the speaker paused here
    bool startsSentence = true;
    std::vector<RecognisedWord> words; ///< times are relative to the beginning of the stream
};

/// The content of "Metadata" for a whole stream.
struct StreamSummary {
    double duration = 0;
    std::string sha256; ///< of all audio, in hexadecimal; "incomplete" before an abnormal end
};

/// In sentence case, with a full stop where the speaker paused.
std::string resultsMessage(const Results& results, std::string_view requestID);
std::string speechStartedMessage(double timestamp);
std::string metadataMessage(const StreamSummary& summary, std::string_view requestID);
/// The answer to an unknown text message; the stream goes on.
std::string errorMessage(std::string_view description, std::string_view offendingText);

/// The "type" of a client's message; none when it is not a JSON object with one.
std::optional<std::string> messageType(const std::string& text);

} // namespace orlune::localservice
