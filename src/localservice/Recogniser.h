#pragma once

// Turns the audio of one utterance at a time into words. Owned by whoever decodes a stream; an
// instance is used by one thread at a time. Decoding costs much: never call it on a thread that
// serves sockets. Nothing here can fail except the making of an instance, which throws
// std::runtime_error with a text for people.

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace orlune {

struct RecognisedWord {
    std::string text;      ///< lower case, without punctuation
    double start = 0;      ///< seconds
    double end = 0;        ///< seconds
    double confidence = 1; ///< 0 to 1
};

class Recogniser {
  public:
    /// The one sample rate of every recogniser, in hertz: the acoustic model is made for it.
    static constexpr int sampleRate = 16000;

    virtual ~Recogniser() = default;
    /// Forgets the voice of earlier streams, so that the same audio always gives the same words.
    virtual void startStream() = 0;
    virtual void startUtterance() = 0;
    virtual void feed(std::span<const std::int16_t> samples) = 0;
    /// The best guess so far. Word times count from the start of the utterance.
    virtual std::vector<RecognisedWord> partial() = 0;
    /// The final words of the utterance, which is over after this.
    virtual std::vector<RecognisedWord> endUtterance() = 0;
};

using RecogniserFactory = std::function<std::unique_ptr<Recogniser>()>;

} // namespace orlune
