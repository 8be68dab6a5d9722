#pragma once

// Turns audio into words, one utterance at a time. Owned by the code that decodes a stream; an
// instance is used by one thread at a time. Decoding is expensive: never call it on a thread that
// serves sockets. Only the creation of an instance can fail; it throws std::runtime_error with a
// text for the user.

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace orlune::localservice {

struct RecognisedWord {
    std::string text;      ///< lower case, without punctuation
    double start = 0;      ///< seconds
    double end = 0;        ///< seconds
    double confidence = 1; ///< 0 to 1
};

class Recogniser {
  public:
    /// The only sample rate of every recogniser, in hertz: the acoustic model requires it.
    static constexpr int sampleRate = 16000;

    virtual ~Recogniser() = default;
    /// Forgets the voice of earlier streams, so that the same audio always gives the same words.
    virtual void startStream() = 0;
    virtual void startUtterance() = 0;
    virtual void feed(std::span<const std::int16_t> samples) = 0;
    /// The best guess so far. Word times count from the start of the utterance.
    virtual std::vector<RecognisedWord> partial() = 0;
    /// The final words of the utterance, which then has ended.
    virtual std::vector<RecognisedWord> endUtterance() = 0;
};

using RecogniserFactory = std::function<std::unique_ptr<Recogniser>()>;

} // namespace orlune::localservice
