#include "platform/linux/pulse/MicrophonePresence.h"

#include "platform/linux/pulse/PulseSourceQuery.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <mutex>
#include <optional>
#include <pthread.h>
#include <thread>
#include <utility>
#include <vector>

namespace orlune {

namespace {

using namespace std::chrono_literals;
using SteadyTime = std::chrono::steady_clock::time_point;

// Enough to start a server on demand and to query it; a recording would wait as long for both.
constexpr auto answerLimit = 3000ms;

constexpr auto changes =
    static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SOURCE | PA_SUBSCRIPTION_MASK_SERVER);

struct LoopFree {
    void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
};

/// False for the start of a recording and for volume changes, which happen in each dictation.
bool mayChangeTheAnswer(pa_subscription_event_type_t event) {
    const auto kind = event & PA_SUBSCRIPTION_EVENT_TYPE_MASK;
    const auto facility = event & PA_SUBSCRIPTION_EVENT_FACILITY_MASK;
    return facility == PA_SUBSCRIPTION_EVENT_SERVER || kind != PA_SUBSCRIPTION_EVENT_CHANGE;
}

} // namespace

class MicrophonePresence::Watch {
  public:
    using Completion = std::function<void(bool isGranted)>;

    Watch() : loop_(pa_mainloop_new()), thread_([this] { run(); }) {}
    ~Watch();

    Status status();
    void request(Completion completion);

  private:
    void wake() const { pa_mainloop_wakeup(loop_.get()); }

    // Everything below is only used on the thread.
    void run();
    /// Checks what has changed and reacts. False when the thread should end.
    bool attend();
    /// Sleeps until there is an event, and lets the loop process it. False when the loop is broken.
    bool turn();
    void connect();
    void disconnect();
    void ask();
    void conclude(Status status);
    int microsecondsToDeadline() const;
    pa_context* context() const { return context_.get(); }

    const std::unique_ptr<pa_mainloop, LoopFree> loop_;

    std::mutex mutex_;
    Status status_ = Status::notDetermined;
    bool isConnected_ = false; ///< or connecting
    bool isAsked_ = true;
    bool isEnding_ = false;
    std::vector<Completion> arrivals_;

    // Only used on the thread.
    PulseContext context_;
    bool wasReady_ = false; ///< of the current connection
    bool isStale_ = false;  ///< the known answer may be out of date
    std::optional<PulseSourceQuery> query_;
    std::optional<SteadyTime> deadline_;  ///< of connecting, or of the running query
    std::vector<Completion> waiting_;     ///< for the running query, or else for the next one
    std::vector<Completion> waitingLate_; ///< arrived after the running query had begun

    std::thread thread_; // last, so that all members exist when it starts
};

MicrophonePresence::Watch::~Watch() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    wake();
    thread_.join();
    query_.reset();
    context_.reset();
}

CaptureAuthorization::Status MicrophonePresence::Watch::status() {
    const std::lock_guard lock(mutex_);
    if (!isConnected_ && !std::exchange(isAsked_, true)) {
        wake();
    }
    return status_;
}

void MicrophonePresence::Watch::request(Completion completion) {
    const std::lock_guard lock(mutex_);
    isAsked_ = true;
    arrivals_.push_back(std::move(completion));
    wake();
}

void MicrophonePresence::Watch::run() {
    pthread_setname_np(pthread_self(), "orlune-mic");
    while (attend() && turn()) {
    }
}

bool MicrophonePresence::Watch::turn() {
    if (pa_mainloop_prepare(loop_.get(), microsecondsToDeadline()) < 0) {
        return false;
    }
    {
        // Preparing discards earlier wake-ups, including those since `attend` checked.
        const std::lock_guard lock(mutex_);
        if (isAsked_ || isEnding_) {
            wake();
        }
    }
    return pa_mainloop_poll(loop_.get()) >= 0 && pa_mainloop_dispatch(loop_.get()) >= 0;
}

bool MicrophonePresence::Watch::attend() {
    bool isAsked = false;
    {
        const std::lock_guard lock(mutex_);
        if (isEnding_) {
            return false;
        }
        isAsked = std::exchange(isAsked_, false);
        auto& queue = query_ ? waitingLate_ : waiting_;
        std::ranges::move(arrivals_, std::back_inserter(queue));
        arrivals_.clear();
    }
    if (context_ && !PA_CONTEXT_IS_GOOD(pa_context_get_state(context()))) {
        const bool wasReady = wasReady_;
        disconnect();
        // A server that worked before may have been restarted.
        wasReady ? connect() : conclude(Status::denied);
    } else if (deadline_ && std::chrono::steady_clock::now() >= *deadline_) {
        disconnect();
        conclude(Status::denied);
    } else if (isAsked && !context_) {
        connect();
    } else if (isAsked) {
        isStale_ = true;
    }
    if (context_ && pa_context_get_state(context()) == PA_CONTEXT_READY) {
        ask();
    }
    return true;
}

void MicrophonePresence::Watch::connect() {
    context_ = makePulseContext(pa_mainloop_get_api(loop_.get()));
    deadline_ = std::chrono::steady_clock::now() + answerLimit;
    {
        const std::lock_guard lock(mutex_);
        isConnected_ = true;
    }
    if (pa_context_connect(context(), nullptr, PA_CONTEXT_NOFLAGS, nullptr) < 0) {
        disconnect();
        conclude(Status::denied);
    }
}

void MicrophonePresence::Watch::disconnect() {
    query_.reset();
    context_.reset();
    deadline_.reset();
    wasReady_ = false;
    isStale_ = false;
    std::ranges::move(waitingLate_, std::back_inserter(waiting_));
    waitingLate_.clear();
    const std::lock_guard lock(mutex_);
    isConnected_ = false;
}

/// Only when the context is ready.
void MicrophonePresence::Watch::ask() {
    if (!std::exchange(wasReady_, true)) {
        pa_context_set_subscribe_callback(
            context(),
            [](pa_context*, pa_subscription_event_type_t event, std::uint32_t, void* userdata) {
                auto& isStale = static_cast<Watch*>(userdata)->isStale_;
                isStale = isStale || mayChangeTheAnswer(event);
            },
            this);
        const PulseOperation withoutCallback(
            pa_context_subscribe(context(), changes, nullptr, nullptr));
        isStale_ = true;
    }
    if (query_ && query_->isAnswered()) {
        const auto status = query_->source() ? Status::authorized : Status::denied;
        query_.reset();
        deadline_.reset();
        conclude(status);
        waiting_ = std::exchange(waitingLate_, {});
    }
    if (!query_ && isStale_) {
        isStale_ = false;
        query_.emplace(context());
        deadline_ = std::chrono::steady_clock::now() + answerLimit;
    }
}

void MicrophonePresence::Watch::conclude(Status status) {
    {
        const std::lock_guard lock(mutex_);
        status_ = status;
    }
    for (const auto& completion : std::exchange(waiting_, {})) {
        completion(status == Status::authorized);
    }
}

int MicrophonePresence::Watch::microsecondsToDeadline() const {
    if (!deadline_) {
        return -1; // no timeout
    }
    const auto left =
        std::chrono::ceil<std::chrono::microseconds>(*deadline_ - std::chrono::steady_clock::now());
    return static_cast<int>(std::max(left, 0us).count());
}

MicrophonePresence::MicrophonePresence() = default;

MicrophonePresence::~MicrophonePresence() = default;

CaptureAuthorization::Status MicrophonePresence::authorizationStatus() {
    return watch().status();
}

void MicrophonePresence::requestAccess(std::function<void(bool)> completion) {
    watch().request(std::move(completion));
}

MicrophonePresence::Watch& MicrophonePresence::watch() {
    if (!watch_) {
        watch_ = std::make_unique<Watch>();
    }
    return *watch_;
}

} // namespace orlune
