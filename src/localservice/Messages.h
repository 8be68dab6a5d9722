#pragma once

// The messages of the live transcription service, as text ready to be sent.
// Free functions on values, safe on any thread; they cannot fail. All times are in seconds of
// audio.

#include "localservice/Recogniser.h"

#include <string>
#include <string_view>
#include <vector>

namespace orlune {

/// One "Results" message: what is known of the audio from `start` to `start + duration`.
struct Results {
    double start = 0;
    double duration = 0;
    bool isFinal = false;     ///< this stretch of audio will not be spoken of again
    bool speechFinal = false; ///< the final was cut because the speaker paused
    bool startsSentence = true;
    std::vector<RecognisedWord> words; ///< times count from the beginning of the stream
};

/// What "Metadata" says about a whole stream.
struct StreamSummary {
    double duration = 0;
    std::string sha256; ///< of all audio, in hexadecimal; "incomplete" before an abnormal end
};

/// With sentence case, and a full stop where the speaker paused.
std::string resultsMessage(const Results& results, std::string_view requestID);
std::string speechStartedMessage(double timestamp);
std::string metadataMessage(const StreamSummary& summary, std::string_view requestID);
/// The answer to a text message that the service does not know; the stream goes on.
std::string errorMessage(std::string_view description, std::string_view offendingText);

} // namespace orlune
