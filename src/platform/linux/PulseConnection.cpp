#include "platform/linux/PulseConnection.h"

#include "platform/Platform.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace orlune {

namespace {

using namespace std::chrono_literals;

// A server on this machine answers within a few milliseconds. Starting one on demand takes most of
// a second on a slow disk; past that the user is better served by an error than by waiting.
constexpr auto connectLimit = 2000ms;
// One round trip to a server that already answered: more than this means that it hangs.
constexpr auto replyLimit = 1000ms;

constexpr auto applicationName = "Orlune";

// What both servers call the output that they make up when there is none.
constexpr auto standInSink = "auto_null";

/// The source that the user's environment names for recordings, or an empty text. libpulse reads it
/// by itself when it records.
std::string sourceOfEnvironment() {
    const char* name = std::getenv("PULSE_SOURCE");
    return name ? name : "";
}

} // namespace

/// The server's answers to three questions that are asked at once.
struct PulseConnection::Sources {
    struct Entry {
        std::string name;
        bool isMonitor;
        std::string monitoredSink;
        Source source;
    };

    explicit Sources(pa_threaded_mainloop* owner) : loop(owner) {}

    pa_threaded_mainloop* loop;
    int answerCount = 0;
    std::string defaultSource;
    std::string defaultSink;
    bool isDefaultSinkReal = false; ///< a device, or the server's stand-in for one
    std::vector<Entry> entries;

    void countAnswer() {
        ++answerCount;
        wake(loop);
    }

    static void receiveServer(pa_context*, const pa_server_info* info, void* userdata) {
        auto& self = *static_cast<Sources*>(userdata);
        if (info && info->default_source_name) {
            self.defaultSource = info->default_source_name;
        }
        self.countAnswer();
    }

    static void receiveSink(pa_context*, const pa_sink_info* info, int end, void* userdata) {
        auto& self = *static_cast<Sources*>(userdata);
        if (end == 0 && info) {
            self.defaultSink = info->name;
            self.isDefaultSinkReal = pa_proplist_contains(info->proplist, PA_PROP_DEVICE_API) == 1
                                     || self.defaultSink == standInSink;
        } else {
            self.countAnswer();
        }
    }

    static void receiveSource(pa_context*, const pa_source_info* info, int end, void* userdata) {
        auto& self = *static_cast<Sources*>(userdata);
        if (end == 0 && info) {
            self.entries.push_back({info->name,
                                    info->monitor_of_sink != PA_INVALID_INDEX,
                                    info->monitor_of_sink_name ? info->monitor_of_sink_name : "",
                                    {info->sample_spec, info->channel_map}});
        } else {
            self.countAnswer();
        }
    }

    const Entry* find(std::string_view name) const {
        const auto entry = std::ranges::find(entries, name, &Entry::name);
        return entry == entries.end() ? nullptr : &*entry;
    }

    /// Servers fall back to the monitor of the default output when there is no microphone. The
    /// monitor of another output, one that was preferred to a microphone, and that of an output
    /// which somebody made up are the user's choice.
    bool isFallback(const Entry& entry) const {
        return entry.isMonitor && entry.monitoredSink == defaultSink && isDefaultSinkReal
               && std::ranges::all_of(entries, &Entry::isMonitor);
    }
};

PulseConnection::PulseConnection() : loop_(pa_threaded_mainloop_new()) {
    if (loop_) {
        pa_threaded_mainloop_set_name(loop(), "orlune-audio");
    }
    if (!loop_ || pa_threaded_mainloop_start(loop()) < 0) {
        throw AudioEngineError("The audio thread could not be started");
    }
    const PulseLock lock(loop());
    beginConnecting();
}

PulseConnection::~PulseConnection() {
    const PulseLock lock(loop());
    context_.reset();
}

bool PulseConnection::connect() {
    if (isReady()) {
        return true;
    }
    const auto isSettled = [this] {
        const auto state = pa_context_get_state(context());
        return state == PA_CONTEXT_READY || !PA_CONTEXT_IS_GOOD(state);
    };
    if (isSettled()) {
        beginConnecting();
    }
    if (wait(connectLimit, isSettled)) {
        errorCode_ = pa_context_errno(context());
    } else {
        // The next attempt starts from the beginning.
        beginConnecting();
        errorCode_ = PA_ERR_TIMEOUT;
    }
    return isReady();
}

std::optional<PulseConnection::Source> PulseConnection::defaultSource() {
    const bool wasReady = isReady();
    auto found = sources();
    if (!found && wasReady && !isReady()) {
        // The connection was lost just now: the server may have been restarted.
        found = sources();
    }
    if (!found) {
        return std::nullopt;
    }
    if (const auto* chosen = found->find(sourceOfEnvironment())) {
        return chosen->source;
    }
    const auto* entry = found->find(found->defaultSource);
    if (!entry || found->isFallback(*entry) || !pa_sample_spec_valid(&entry->source.sampleSpec)) {
        return std::nullopt;
    }
    return entry->source;
}

std::optional<PulseConnection::Sources> PulseConnection::sources() {
    if (!connect()) {
        return std::nullopt;
    }
    Sources answer(loop());
    const PulseOperation questions[] = {
        PulseOperation(pa_context_get_server_info(context(), Sources::receiveServer, &answer)),
        PulseOperation(pa_context_get_sink_info_by_name(context(), "@DEFAULT_SINK@",
                                                        Sources::receiveSink, &answer)),
        PulseOperation(pa_context_get_source_info_list(context(), Sources::receiveSource, &answer)),
    };
    const auto isAnswered = [&] { return answer.answerCount == std::ssize(questions); };
    if (!wait(replyLimit, [&] { return isAnswered() || !isReady(); })) {
        errorCode_ = PA_ERR_TIMEOUT;
    } else if (!isAnswered()) {
        errorCode_ = pa_context_errno(context());
    } else {
        return answer;
    }
    return std::nullopt;
}

std::string PulseConnection::error() const {
    return pa_strerror(errorCode_);
}

void PulseConnection::expire(pa_mainloop_api*, pa_time_event*, const timeval*, void* userdata) {
    auto& expiry = *static_cast<Expiry*>(userdata);
    expiry.hasExpired = true;
    wake(expiry.loop);
}

void PulseConnection::beginConnecting() {
    const PulseProperties properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ID, bundleIdentifier);
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, bundleIdentifier);
    context_.reset(pa_context_new_with_proplist(pa_threaded_mainloop_get_api(loop()),
                                                applicationName, properties.get()));
    pa_context_set_state_callback(
        context(), [](pa_context*, void* userdata) { wake(userdata); }, loop());
    // A failure shows in the state of the context.
    pa_context_connect(context(), nullptr, PA_CONTEXT_NOFLAGS, nullptr);
}

bool PulseConnection::isReady() const {
    return pa_context_get_state(context()) == PA_CONTEXT_READY;
}

} // namespace orlune
