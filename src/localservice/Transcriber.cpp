#include "localservice/Transcriber.h"

#include <openssl/evp.h>

#include <cstdio>
#include <utility>

namespace orlune::localservice {
namespace {

// All in samples.
constexpr std::size_t oneSecond = Recogniser::sampleRate;
// The first answer comes at 1.08 s of audio, the next ones each second after it, as in the real
// service.
constexpr std::size_t firstInterim = oneSecond * 108 / 100;
constexpr std::size_t endpointing = oneSecond * 300 / 1000; // silence that ends an utterance
constexpr std::size_t lead = oneSecond * 300 / 1000;
// Speech without pauses still gets finals: at a short dip after 12 s, at the latest after 20 s.
constexpr std::size_t longUtterance = oneSecond * 12;
constexpr std::size_t longestUtterance = oneSecond * 20;
constexpr std::size_t shortDip = oneSecond * 80 / 1000;

double seconds(std::size_t samples) {
    return static_cast<double>(samples) / static_cast<double>(oneSecond);
}

} // namespace

Transcriber::Transcriber(Recogniser& recogniser, std::string requestID)
    : recogniser_(recogniser), requestID_(std::move(requestID)),
      checksum_(EVP_MD_CTX_new(), [](EVP_MD_CTX* context) { EVP_MD_CTX_free(context); }) {
    recogniser_.startStream();
    EVP_DigestInit_ex(checksum_.get(), EVP_sha256(), nullptr);
}

Transcriber::~Transcriber() {
    if (inUtterance_) {
        recogniser_.endUtterance();
    }
}

Transcriber::Messages Transcriber::feed(std::span<const std::byte> audio) {
    EVP_DigestUpdate(checksum_.get(), audio.data(), audio.size());
    for (const auto byte : audio) {
        if (!hasHalfSample_) {
            halfSample_ = byte;
            hasHalfSample_ = true;
            continue;
        }
        hasHalfSample_ = false;
        const auto sample =
            (std::to_integer<unsigned>(byte) << 8U) | std::to_integer<unsigned>(halfSample_);
        frame_[frameFill_++] = static_cast<std::int16_t>(sample);
        if (frameFill_ == frame_.size()) {
            frameFill_ = 0;
            samples_ += frame_.size();
            processFrame();
        }
    }
    return std::exchange(outgoing_, {});
}

Transcriber::Messages Transcriber::finish() {
    if (inUtterance_) {
        recogniser_.feed(std::span(frame_).first(frameFill_));
    }
    samples_ += std::exchange(frameFill_, 0);
    if (samples_ > segmentStart_) {
        sendFinal(/*speechFinal=*/true);
    }
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    EVP_DigestFinal_ex(checksum_.get(), digest.data(), &size);
    std::string hexadecimal;
    for (unsigned index = 0; index < size; ++index) {
        char text[3];
        std::snprintf(text, sizeof text, "%02x", static_cast<unsigned>(digest[index]));
        hexadecimal += text;
    }
    outgoing_.push_back(
        metadataMessage({.duration = seconds(samples_), .sha256 = hexadecimal}, requestID_));
    return std::exchange(outgoing_, {});
}

Transcriber::Messages Transcriber::abandon() {
    samples_ += std::exchange(frameFill_, 0);
    outgoing_.push_back(
        metadataMessage({.duration = seconds(samples_), .sha256 = "incomplete"}, requestID_));
    return std::exchange(outgoing_, {});
}

void Transcriber::processFrame() {
    const bool speech = detector_.isSpeech(frame_);
    if (speech) {
        lastSpeech_ = samples_ - detector_.framesSinceLoud() * frame_.size();
    }
    if (inUtterance_) {
        recogniser_.feed(frame_);
    } else {
        lead_.push_back(frame_);
        if (speech) {
            startUtterance();
        } else if (lead_.size() * frame_.size() > lead) {
            lead_.pop_front();
        }
    }
    if (inUtterance_) {
        const auto quiet = samples_ - lastSpeech_;
        const auto length = samples_ - utteranceStart_;
        if (quiet >= endpointing) {
            sendFinal(/*speechFinal=*/true);
        } else if (length >= longestUtterance || (length >= longUtterance && quiet >= shortDip)) {
            sendFinal(/*speechFinal=*/false);
        }
    }
    if (samples_ >= firstInterim && (samples_ - firstInterim) % oneSecond == 0) {
        sendInterim();
    }
}

void Transcriber::startUtterance() {
    utteranceStart_ = samples_ - lead_.size() * frame_.size();
    inUtterance_ = true;
    recogniser_.startUtterance();
    for (const auto& frame : lead_) {
        recogniser_.feed(frame);
    }
    lead_.clear();
    outgoing_.push_back(speechStartedMessage(seconds(samples_)));
}

Results Transcriber::openSegment() const {
    return {.start = seconds(segmentStart_),
            .duration = seconds(samples_ - segmentStart_),
            .startsSentence = startsSentence_,
            .words = {}};
}

void Transcriber::sendInterim() {
    if (samples_ <= segmentStart_) {
        return;
    }
    auto results = openSegment();
    if (inUtterance_) {
        results.words = placed(recogniser_.partial());
    }
    outgoing_.push_back(resultsMessage(results, requestID_));
}

void Transcriber::sendFinal(bool speechFinal) {
    auto results = openSegment();
    results.isFinal = true;
    results.speechFinal = speechFinal;
    if (inUtterance_) {
        results.words = placed(recogniser_.endUtterance());
        inUtterance_ = false;
    }
    startsSentence_ = speechFinal;
    segmentStart_ = samples_;
    outgoing_.push_back(resultsMessage(results, requestID_));
}

std::vector<RecognisedWord> Transcriber::placed(std::vector<RecognisedWord> words) const {
    for (auto& word : words) {
        word.start += seconds(utteranceStart_);
        word.end += seconds(utteranceStart_);
    }
    return words;
}

} // namespace orlune::localservice
