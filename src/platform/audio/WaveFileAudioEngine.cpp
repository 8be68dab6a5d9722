#include "platform/audio/WaveFileAudioEngine.h"

#include <algorithm>
#include <cstddef>
#include <pthread.h>
#include <span>
#include <utility>
#include <vector>

namespace orlune {

namespace {

using SteadyClock = std::chrono::steady_clock;

/// Fills the buffer from the file and pads it with zeros. Returns how many frames the file had.
std::uint32_t read(SNDFILE* file, std::vector<float>& interleaved, AudioPCMBuffer& buffer) {
    const auto capacity = buffer.frameCapacity();
    const auto read = sf_readf_float(file, interleaved.data(), capacity);
    const auto frames = static_cast<std::uint32_t>(std::max<sf_count_t>(read, 0));
    const auto channels = buffer.format().channelCount;
    for (std::uint32_t channel = 0; channel < channels; ++channel) {
        const auto samples = buffer.floatChannel(channel);
        for (std::size_t frame = 0; frame < frames; ++frame) {
            samples[frame] = interleaved[frame * channels + channel];
        }
        std::ranges::fill(samples.subspan(frames), 0.0F);
    }
    buffer.setFrameLength(capacity);
    return frames;
}

} // namespace

void WaveFileAudioEngine::Close::operator()(SNDFILE* file) const {
    sf_close(file);
}

WaveFileAudioEngine::Opened WaveFileAudioEngine::create(const std::filesystem::path& path,
                                                        Pace pace, std::function<void()> onEnd) {
    SF_INFO info{};
    File file(sf_open(path.c_str(), SFM_READ, &info));
    if (!file) {
        std::string reason = sf_strerror(nullptr);
        while (reason.ends_with('.') || reason.ends_with('\n')) {
            reason.pop_back();
        }
        return {nullptr, "Cannot play " + path.string() + ": " + reason};
    }
    if (info.samplerate <= 0 || info.channels <= 0) {
        return {nullptr, "Cannot play " + path.string() + ": it holds no sound"};
    }
    const AudioFormat format{AudioFormat::Sample::float32, static_cast<double>(info.samplerate),
                             static_cast<std::uint32_t>(info.channels), false};
    return {std::unique_ptr<WaveFileAudioEngine>(
                new WaveFileAudioEngine(std::move(file), format, pace, std::move(onEnd))),
            {}};
}

WaveFileAudioEngine::WaveFileAudioEngine(File file, const AudioFormat& format, Pace pace,
                                         std::function<void()> onEnd)
    : file_(std::move(file)), format_(format), pace_(pace), onEnd_(std::move(onEnd)) {}

WaveFileAudioEngine::~WaveFileAudioEngine() {
    stop();
}

void WaveFileAudioEngine::installTap(std::uint32_t bufferSize, const AudioFormat&, Tap tap) {
    bufferSize_ = bufferSize;
    tap_ = std::move(tap);
}

void WaveFileAudioEngine::removeTap() {
    stop();
    tap_ = nullptr;
}

void WaveFileAudioEngine::start() {
    if (isRunning()) {
        return;
    }
    if (!std::exchange(isAtStart_, false) && sf_seek(file_.get(), 0, SEEK_SET) != 0) {
        throw AudioEngineError("The recording cannot be played again from its beginning");
    }
    thread_ = std::jthread([this](const std::stop_token& stopToken) { play(stopToken); });
}

void WaveFileAudioEngine::stop() {
    thread_ = {};
}

void WaveFileAudioEngine::play(const std::stop_token& stopToken) {
    pthread_setname_np(pthread_self(), "orlune-wave");
    playBuffers(stopToken);
    if (onEnd_ && !stopToken.stop_requested()) {
        onEnd_();
    }
}

void WaveFileAudioEngine::playBuffers(const std::stop_token& stopToken) {
    const Tap tap = tap_;
    auto buffer = AudioPCMBuffer::create(format_, bufferSize_);
    if (!tap || !buffer || bufferSize_ == 0) {
        return;
    }
    std::vector<float> interleaved(std::size_t{bufferSize_} * format_.channelCount);
    const std::chrono::duration<double> bufferDuration(bufferSize_ / format_.sampleRate);
    const auto begin = SteadyClock::now();
    for (std::int64_t count = 1;; ++count) {
        const auto frames = read(file_.get(), interleaved, *buffer);
        if (frames == 0) {
            return;
        }
        const auto filled = begin
                            + std::chrono::duration_cast<SteadyClock::duration>(
                                bufferDuration * static_cast<double>(count));
        if (!waitUntil(pace_ == Pace::fast ? begin : filled, stopToken)) {
            return;
        }
        tap({&*buffer, 1});
        if (frames < bufferSize_) {
            return;
        }
    }
}

/// False when the engine was stopped.
bool WaveFileAudioEngine::waitUntil(SteadyClock::time_point instant,
                                    const std::stop_token& stopToken) {
    std::unique_lock lock(mutex_);
    stopped_.wait_until(lock, stopToken, instant, [] { return false; });
    return !stopToken.stop_requested();
}

} // namespace orlune
