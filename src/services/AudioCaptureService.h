// The default microphone as packets for the transcription, with a loudness for the waveform. Owned
// by the session controller, which prepares, starts and stops it on the main actor. Both callbacks
// run on the engine's audio thread and must return quickly. Each delivery calls the level callback
// first and then the data callback, so that the receiver wakes once. `prepare` throws CaptureError,
// `start` the engine's own error.
#pragma once

#include "core/AudioPacketStream.h"
#include "platform/AudioConverter.h"
#include "platform/AudioEngine.h"

#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <span>

namespace orlune {

class AudioCaptureService {
  public:
    /// Why no capture could be prepared; `what()` is the text for the user.
    class CaptureError : public std::exception {
      public:
        enum class Case { noInput, conversionFailed };

        explicit CaptureError(Case kind) : kind_(kind) {}
        Case kind() const { return kind_; }
        const char* what() const noexcept override;

        bool operator==(const CaptureError& other) const { return kind_ == other.kind_; }

      private:
        Case kind_;
    };

    /// Receives the smoothed loudness of each buffer of one delivery, from 0 to 1.
    using LevelCallback = std::function<void(std::span<const double> levels)>;
    /// Receives the samples of one buffer; never an empty packet.
    using AudioDataCallback = std::function<void(AudioPacket packet)>;

    /// Makes one engine, which is used for every dictation.
    AudioCaptureService(const AudioEngineFactory& makeEngine, AudioConverterFactory makeConverter);
    ~AudioCaptureService();
    AudioCaptureService(const AudioCaptureService&) = delete;
    AudioCaptureService& operator=(const AudioCaptureService&) = delete;

    /// Installs the tap, replacing an earlier one, and prepares the engine without starting it.
    /// Returns the format of the packets. Nothing is installed when it throws.
    AudioFormat prepare(LevelCallback level, AudioDataCallback audioData);

    /// Starts a prepared engine; does nothing when there is none. When it throws AudioEngineError,
    /// the tap stays until `stop`.
    void start();

    /// No callback runs after it has returned. May be called at any time.
    void stop();

    bool isPrepared() const { return isPrepared_; }

  private:
    class TapHandler;

    static float rms(const AudioPCMBuffer& buffer);

    std::unique_ptr<AudioEngine> engine_;
    AudioConverterFactory makeConverter_;
    bool isPrepared_ = false;
};

} // namespace orlune

template <>
struct std::hash<orlune::AudioCaptureService::CaptureError> {
    std::size_t operator()(const orlune::AudioCaptureService::CaptureError& error) const noexcept {
        return static_cast<std::size_t>(error.kind());
    }
};
