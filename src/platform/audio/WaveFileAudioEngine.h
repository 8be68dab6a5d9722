// A recording in place of the microphone. Owned by its creator; the tap and `onEnd` are called on
// its own thread "orlune-wave", which lives from start to stop. Each start plays the file from its
// beginning. A file that is not audio gives a reason instead of an engine.
#pragma once

#include "platform/AudioEngine.h"

#include <sndfile.h>

#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>

namespace orlune {

class WaveFileAudioEngine final : public AudioEngine {
  public:
    enum class Pace {
        microphone, ///< each buffer at the time when a microphone would have filled it
        fast,       ///< without waiting
    };

    struct Opened;

    /// Opens any file that libsndfile reads. `onEnd` may be empty; it is called once per start,
    /// after the last buffer, which is padded with silence, and never after `stop` has returned. It
    /// must not call the engine.
    static Opened create(const std::filesystem::path& path, Pace pace,
                         std::function<void()> onEnd = {});
    ~WaveFileAudioEngine() override;

    /// The format of the file; channels are not interleaved.
    AudioFormat inputFormat() override { return format_; }
    /// `format` must be the engine's own.
    void installTap(std::uint32_t bufferSize, const AudioFormat& format, Tap tap) override;
    /// Also ends playback.
    void removeTap() override;
    void prepare() override {}
    void start() override;
    void stop() override;
    /// Stays true after the end of the file until `stop`, like a microphone in a silent room.
    bool isRunning() const override { return thread_.joinable(); }

  private:
    struct Close {
        void operator()(SNDFILE* file) const;
    };
    using File = std::unique_ptr<SNDFILE, Close>;

    WaveFileAudioEngine(File file, const AudioFormat& format, Pace pace,
                        std::function<void()> onEnd);

    void play(const std::stop_token& stopToken);
    void playBuffers(const std::stop_token& stopToken);
    bool waitUntil(std::chrono::steady_clock::time_point instant, const std::stop_token& stopToken);

    File file_;
    const AudioFormat format_;
    const Pace pace_;
    const std::function<void()> onEnd_;
    std::uint32_t bufferSize_ = 0;
    Tap tap_;
    bool isAtStart_ = true;
    std::mutex mutex_;
    std::condition_variable_any stopped_;
    std::jthread thread_;
};

/// Either an engine, or a text for the user that says why there is none.
struct WaveFileAudioEngine::Opened {
    std::unique_ptr<WaveFileAudioEngine> engine;
    std::string error;
};

} // namespace orlune
