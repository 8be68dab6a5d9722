#include "platform/linux/pulse/SoundFacts.h"

#include "platform/linux/pulse/PulseAudioEngine.h"
#include "platform/linux/pulse/PulseConnection.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <span>

namespace orlune {

namespace {

using namespace std::chrono_literals;

constexpr auto replyLimit = 1000ms;
constexpr auto listeningTime = 500ms;
/// Opening a microphone takes 50 ms, and much longer when the device sleeps.
constexpr auto firstSoundLimit = 2000ms;

struct Names {
    explicit Names(pa_threaded_mainloop* owner) : loop(owner) {}

    pa_threaded_mainloop* loop;
    int answerCount = 0;
    std::string server;
    std::string source;
    bool isMuted = false;

    void countAnswer() {
        ++answerCount;
        PulseConnection::wake(loop);
    }
    static void receiveServer(pa_context*, const pa_server_info* info, void* userdata) {
        auto& self = *static_cast<Names*>(userdata);
        if (info) {
            self.server = std::string(info->server_name) + " " + info->server_version;
        }
        self.countAnswer();
    }
    static void receiveSource(pa_context*, const pa_source_info* info, int end, void* userdata) {
        auto& self = *static_cast<Names*>(userdata);
        if (end == 0 && info) {
            self.source = info->description;
            self.isMuted = info->mute != 0;
        } else {
            self.countAnswer();
        }
    }
};

/// The source that recordings use, by the name that libpulse would select.
const char* sourceName() {
    const char* name = std::getenv("PULSE_SOURCE");
    return name && *name ? name : "@DEFAULT_SOURCE@";
}

void readNames(SoundFacts& facts) {
    PulseConnection connection;
    const PulseLock lock(connection.loop());
    if (!connection.connect()) {
        facts.error = connection.error();
        return;
    }
    Names names(connection.loop());
    const PulseOperation server(
        pa_context_get_server_info(connection.context(), Names::receiveServer, &names));
    const PulseOperation source(pa_context_get_source_info_by_name(
        connection.context(), sourceName(), Names::receiveSource, &names));
    if (!connection.wait(replyLimit, [&] { return names.answerCount == 2; })) {
        facts.error = pa_strerror(PA_ERR_TIMEOUT);
        return;
    }
    facts.server = names.server;
    if (connection.defaultSource()) {
        facts.source = names.source;
        facts.isMuted = names.isMuted;
    }
}

double peak(const AudioPCMBuffer& buffer) {
    double highest = 0;
    for (std::uint32_t channel = 0; channel < buffer.format().channelCount; ++channel) {
        for (const float sample : buffer.floatChannel(channel)) {
            highest = std::max(highest, std::abs(double{sample}));
        }
    }
    return highest;
}

void listen(SoundFacts& facts) {
    std::mutex mutex;
    std::condition_variable delivered;
    PulseAudioEngine engine;
    const auto format = engine.inputFormat();
    engine.installTap(static_cast<std::uint32_t>(format.sampleRate / 100), format,
                      [&](std::span<const AudioPCMBuffer> buffers) {
                          const std::lock_guard lock(mutex);
                          facts.hasDelivered = true;
                          for (const auto& buffer : buffers) {
                              facts.peak = std::max(facts.peak, peak(buffer));
                          }
                          delivered.notify_one();
                      });
    try {
        engine.prepare();
        engine.start();
    } catch (const AudioEngineError& error) {
        facts.recordingError = error.what();
        return;
    }
    {
        std::unique_lock lock(mutex);
        if (delivered.wait_for(lock, firstSoundLimit, [&] { return facts.hasDelivered; })) {
            const auto end = std::chrono::steady_clock::now() + listeningTime;
            while (delivered.wait_until(lock, end) != std::cv_status::timeout) {
            }
        }
    }
    engine.stop();
}

} // namespace

SoundFacts SoundFacts::read() {
    SoundFacts facts;
    readNames(facts);
    if (!facts.source.empty()) {
        listen(facts);
    }
    return facts;
}

} // namespace orlune
