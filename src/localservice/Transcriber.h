#pragma once

// Turns one stream of audio into the service's text messages, in the order in which they must be
// sent. Owned by one connection and used by one thread at a time, never the one that serves
// sockets: a call may decode for a while. The messages depend only on the audio, not on the clock
// nor on how the audio was split into messages.

#include "localservice/Messages.h"
#include "localservice/Recogniser.h"
#include "localservice/SpeechDetector.h"

#include <array>
#include <cstddef>
#include <deque>
#include <memory>
#include <span>
#include <string>
#include <vector>

typedef struct evp_md_ctx_st EVP_MD_CTX;

namespace orlune::localservice {

class Transcriber {
  public:
    using Messages = std::vector<std::string>;

    Transcriber(Recogniser& recogniser, std::string requestID);
    ~Transcriber();
    Transcriber(const Transcriber&) = delete;
    Transcriber& operator=(const Transcriber&) = delete;

    /// Takes the next bytes of 16-bit little-endian samples; a sample may be split between two
    /// calls.
    Messages feed(std::span<const std::byte> audio);
    /// The end of the stream: the rest as a final, then Metadata.
    Messages finish();
    /// An end before CloseStream: Metadata whose checksum reads "incomplete".
    Messages abandon();

  private:
    using Frame = std::array<std::int16_t, SpeechDetector::frameSamples>;

    void processFrame();
    void startUtterance();
    void sendInterim();
    void sendFinal(bool speechFinal);
    Results openSegment() const;
    std::vector<RecognisedWord> placed(std::vector<RecognisedWord> words) const;

    Recogniser& recogniser_;
    std::string requestID_;
    SpeechDetector detector_;
    Messages outgoing_;
    Frame frame_{};
    std::size_t frameFill_ = 0;
    std::size_t samples_ = 0; // received in whole frames
    std::deque<Frame> lead_;  // audio just before speech, which the recogniser also needs
    std::byte halfSample_{};
    bool hasHalfSample_ = false;
    bool inUtterance_ = false;
    bool startsSentence_ = true;
    // Positions in the stream, in samples.
    std::size_t utteranceStart_ = 0;
    std::size_t lastSpeech_ = 0;
    std::size_t segmentStart_ = 0;
    std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> checksum_;
};

} // namespace orlune::localservice
