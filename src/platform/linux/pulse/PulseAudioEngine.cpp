#include "platform/linux/pulse/PulseAudioEngine.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace orlune {

namespace {

using namespace std::chrono_literals;

// Small fragments keep the delay between voice and text small. With adjusted latency the server
// runs the device at half of the requested duration and sends each piece as it arrives, so this
// yields one piece for each 12 ms buffer of the tap. A request for 12 ms would wake all threads
// twice as often without benefit.
constexpr pa_usec_t fragmentDuration = 24 * PA_USEC_PER_MSEC;
// Opening a source takes some 50 ms, or more than a second for a sleeping Bluetooth headset.
constexpr auto streamLimit = 3000ms;

/// A late delivery with more buffers than this is split.
constexpr std::size_t mostBuffers = 4;

constexpr auto streamName = "Dictation";
constexpr auto serverDefault = static_cast<std::uint32_t>(-1);

} // namespace

/// One run of the tap, from start to stop: an open stream, and the buffers that it fills.
class PulseAudioEngine::Recording {
  public:
    Recording(PulseConnection& connection, const pa_sample_spec& sampleSpec,
              const pa_channel_map& channelMap, std::vector<AudioPCMBuffer> buffers, Tap tap,
              Log* log)
        : connection_(connection), buffers_(std::move(buffers)), tap_(std::move(tap)), log_(log),
          stream_(pa_stream_new(connection.context(), streamName, &sampleSpec, &channelMap)) {
        if (!stream_) {
            fail(pa_context_errno(connection.context()));
        }
        pa_stream_set_state_callback(
            stream_.get(),
            [](pa_stream*, void* userdata) { static_cast<Recording*>(userdata)->changeState(); },
            this);
        pa_stream_set_read_callback(
            stream_.get(),
            [](pa_stream*, std::size_t, void* userdata) noexcept {
                static_cast<Recording*>(userdata)->receive();
            },
            this);
        const pa_buffer_attr attributes{
            .maxlength = serverDefault,
            .tlength = serverDefault,
            .prebuf = serverDefault,
            .minreq = serverDefault,
            .fragsize = static_cast<std::uint32_t>(pa_usec_to_bytes(fragmentDuration, &sampleSpec)),
        };
        // Without a device name, the stream follows the user's default source, also when it
        // changes. Without adjusted latency the server would send two seconds at a time.
        if (pa_stream_connect_record(stream_.get(), nullptr, &attributes, PA_STREAM_ADJUST_LATENCY)
            < 0) {
            fail(pa_context_errno(connection.context()));
        }
    }

    /// Throws when the server refuses or does not answer.
    void waitUntilOpen() {
        const auto state = [this] { return pa_stream_get_state(stream_.get()); };
        if (!connection_.wait(streamLimit, [&] { return state() != PA_STREAM_CREATING; })) {
            fail(PA_ERR_TIMEOUT);
        }
        if (state() != PA_STREAM_READY) {
            fail(pa_context_errno(connection_.context()));
        }
    }

  private:
    /// On the audio thread, with the loop locked.
    void changeState() {
        PulseConnection::wake(connection_.loop());
        if (std::exchange(isOpen_, pa_stream_get_state(stream_.get()) == PA_STREAM_READY)
            && !isOpen_) {
            if (log_) {
                log_->write(Log::Level::error, "Microphone",
                            std::string("lost while recording, which goes on in silence: ")
                                + pa_strerror(pa_context_errno(connection_.context())));
            }
            continueInSilence();
        }
    }

    void continueInSilence() {
        const auto& buffer = buffers_.front();
        const auto duration = buffer.frameCapacity() / buffer.format().sampleRate;
        silence_.emplace(
            connection_.loop(), connection_.context(),
            static_cast<pa_usec_t>(duration * PA_USEC_PER_SEC),
            [](pa_mainloop_api*, pa_time_event*, const timeval*, void* userdata) noexcept {
                auto& self = *static_cast<Recording*>(userdata);
                self.append(nullptr, self.buffers_.front().frameCapacity());
                self.deliver();
                self.continueInSilence();
            },
            this);
    }

    [[noreturn]] void fail(int code) {
        connection_.setError(code);
        throw AudioEngineError(connection_.error());
    }

    /// Reads what the server sent. On the audio thread, with the loop locked.
    void receive() {
        const void* data = nullptr;
        std::size_t byteCount = 0;
        while (pa_stream_peek(stream_.get(), &data, &byteCount) == 0 && byteCount > 0) {
            const auto channels = buffers_.front().format().channelCount;
            append(static_cast<const float*>(data), byteCount / (channels * sizeof(float)));
            pa_stream_drop(stream_.get());
        }
        deliver();
    }

    /// `interleaved` is null for a gap in the recording, which becomes silence.
    void append(const float* interleaved, std::size_t frames) {
        const std::size_t channels = buffers_.front().format().channelCount;
        while (frames > 0) {
            auto& buffer = buffers_[fullCount_];
            const auto count = std::min<std::size_t>(frames, buffer.frameCapacity() - filled_);
            for (std::uint32_t channel = 0; channel < channels; ++channel) {
                const auto target = buffer.floatChannel(channel).subspan(filled_, count);
                for (std::size_t frame = 0; frame < count; ++frame) {
                    target[frame] = interleaved ? interleaved[frame * channels + channel] : 0.0F;
                }
            }
            interleaved = interleaved ? interleaved + count * channels : nullptr;
            frames -= count;
            filled_ += count;
            if (filled_ == buffer.frameCapacity()) {
                filled_ = 0;
                if (++fullCount_ == buffers_.size()) {
                    deliver();
                }
            }
        }
    }

    /// All buffers in one call, so that the tap's receivers wake once.
    void deliver() {
        if (const auto count = std::exchange(fullCount_, 0); count > 0) {
            tap_(std::span(buffers_).first(count));
            std::rotate(buffers_.begin(), buffers_.begin() + static_cast<std::ptrdiff_t>(count),
                        buffers_.end()); // the partly filled one comes first
        }
    }

    PulseConnection& connection_;
    std::vector<AudioPCMBuffer> buffers_; ///< full ones, then the partly filled one
    std::size_t fullCount_ = 0;
    std::size_t filled_ = 0; ///< frames in the buffer after the full ones
    const Tap tap_;
    Log* log_;
    bool isOpen_ = false;
    std::optional<PulseTimer> silence_; ///< set once the stream is lost
    PulseStream stream_;                // last, so that no callback runs during destruction
};

PulseAudioEngine::PulseAudioEngine(Log* log) : log_(log) {}

PulseAudioEngine::~PulseAudioEngine() {
    stop();
}

AudioFormat PulseAudioEngine::inputFormat() {
    const PulseLock lock(connection_.loop());
    source_ = connection_.defaultSource();
    if (!source_) {
        return {};
    }
    return {AudioFormat::Sample::float32, static_cast<double>(source_->sampleSpec.rate),
            source_->sampleSpec.channels, false};
}

void PulseAudioEngine::installTap(std::uint32_t bufferSize, const AudioFormat& format, Tap tap) {
    bufferSize_ = bufferSize;
    format_ = format;
    tap_ = std::move(tap);
}

void PulseAudioEngine::removeTap() {
    const PulseLock lock(connection_.loop());
    recording_.reset();
    tap_ = nullptr;
}

void PulseAudioEngine::prepare() {
    const PulseLock lock(connection_.loop());
    connection_.connect();
}

void PulseAudioEngine::start() {
    if (std::exchange(isRunning_, true) || !tap_) {
        return;
    }
    const PulseLock lock(connection_.loop());
    try {
        const pa_sample_spec sampleSpec{
            PA_SAMPLE_FLOAT32NE, static_cast<std::uint32_t>(format_.sampleRate),
            static_cast<std::uint8_t>(std::min<std::uint32_t>(format_.channelCount, UINT8_MAX))};
        std::vector<AudioPCMBuffer> buffers;
        while (buffers.size() < mostBuffers) {
            auto buffer = AudioPCMBuffer::create(format_, bufferSize_);
            if (!buffer) {
                break;
            }
            buffer->setFrameLength(bufferSize_);
            buffers.push_back(std::move(*buffer));
        }
        if (!pa_sample_spec_valid(&sampleSpec) || buffers.size() < mostBuffers || bufferSize_ == 0
            || format_.sample != AudioFormat::Sample::float32 || format_.isInterleaved) {
            throw AudioEngineError(pa_strerror(PA_ERR_INVALID));
        }
        if (!connection_.connect()) {
            throw AudioEngineError(connection_.error());
        }
        // The source's own channel map keeps the server from mixing channels.
        pa_channel_map channelMap;
        pa_channel_map_init_extend(&channelMap, sampleSpec.channels, PA_CHANNEL_MAP_DEFAULT);
        if (source_ && source_->channelMap.channels == sampleSpec.channels) {
            channelMap = source_->channelMap;
        }
        recording_ = std::make_unique<Recording>(connection_, sampleSpec, channelMap,
                                                 std::move(buffers), tap_, log_);
        recording_->waitUntilOpen();
    } catch (...) {
        recording_.reset();
        isRunning_ = false;
        throw;
    }
}

void PulseAudioEngine::stop() {
    const PulseLock lock(connection_.loop());
    recording_.reset();
    isRunning_ = false;
}

} // namespace orlune
