#include "platform/linux/pulse/PulseConnection.h"

#include "platform/AudioEngine.h"

namespace orlune {

namespace {

using namespace std::chrono_literals;

// A server on this machine answers within a few milliseconds. Starting one on demand takes most of
// a second on a slow disk; after that an error serves the user better than waiting.
constexpr auto connectLimit = 2000ms;
// One round trip to a server that has answered before; a longer delay means that it hangs.
constexpr auto replyLimit = 1000ms;

} // namespace

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
        // The next attempt reconnects.
        beginConnecting();
        errorCode_ = PA_ERR_TIMEOUT;
    }
    return isReady();
}

std::optional<PulseConnection::Source> PulseConnection::defaultSource() {
    const bool wasReady = isReady();
    auto found = askForSource();
    if (!found.isAnswered && wasReady && !isReady()) {
        // The connection was just lost: the server may have been restarted.
        found = askForSource();
    }
    return found.source;
}

PulseConnection::Answer PulseConnection::askForSource() {
    if (!connect()) {
        return {};
    }
    const PulseSourceQuery query(context(), [this] { wake(loop()); });
    if (!wait(replyLimit, [&] { return query.isAnswered() || !isReady(); })) {
        errorCode_ = PA_ERR_TIMEOUT;
    } else if (!query.isAnswered()) {
        errorCode_ = pa_context_errno(context());
    } else {
        return {.isAnswered = true, .source = query.source()};
    }
    return {};
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
    context_ = makePulseContext(pa_threaded_mainloop_get_api(loop()));
    pa_context_set_state_callback(
        context(), [](pa_context*, void* userdata) { wake(userdata); }, loop());
    // The state of the context shows a failure.
    pa_context_connect(context(), nullptr, PA_CONTEXT_NOFLAGS, nullptr);
}

bool PulseConnection::isReady() const {
    return pa_context_get_state(context()) == PA_CONTEXT_READY;
}

} // namespace orlune
