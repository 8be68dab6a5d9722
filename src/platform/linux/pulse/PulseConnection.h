// The connection to the user's sound server, PulseAudio or PipeWire, with its own thread
// "orlune-audio". Owned by the engine that records through it. Every wait for the server has a time
// limit; failures are return values, with their text in `error`. Everything except `loop` is used
// with the loop locked.
#pragma once

#include "platform/linux/pulse/PulseHandles.h"
#include "platform/linux/pulse/PulseSourceQuery.h"

#include <chrono>
#include <optional>
#include <string>

namespace orlune {

class PulseConnection {
  public:
    using Source = PulseSourceQuery::Source;

    /// Starts to connect without waiting. Throws AudioEngineError when the process cannot create
    /// another thread.
    PulseConnection();
    ~PulseConnection();
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;

    pa_threaded_mainloop* loop() const { return loop_.get(); }
    pa_context* context() const { return context_.get(); }

    /// True when the server answers; reconnects when the last connection was lost.
    bool connect();

    /// The source that a recording would use. None without a server or a microphone.
    std::optional<Source> defaultSource();

    /// Waits until `isDone`, whose state callbacks change before they call `wake`. False on
    /// timeout.
    template <typename Condition>
    bool wait(std::chrono::milliseconds limit, Condition isDone) {
        Expiry expiry{loop(), false};
        const PulseTimer timer(loop(), context(),
                               static_cast<pa_usec_t>(std::chrono::microseconds(limit).count()),
                               expire, &expiry);
        while (!isDone() && !expiry.hasExpired) {
            pa_threaded_mainloop_wait(loop());
        }
        return isDone();
    }

    /// Why the last operation failed, in the sound system's words.
    std::string error() const;
    void setError(int code) { errorCode_ = code; }

    /// Wakes the waiting thread, which checks its condition again. For callbacks.
    static void wake(void* loop) {
        pa_threaded_mainloop_signal(static_cast<pa_threaded_mainloop*>(loop),
                                    /*wait_for_accept=*/0);
    }

  private:
    struct Expiry {
        pa_threaded_mainloop* loop;
        bool hasExpired;
    };
    struct Answer {
        bool isAnswered = false;
        std::optional<Source> source;
    };

    static void expire(pa_mainloop_api*, pa_time_event*, const timeval*, void* userdata);

    void beginConnecting();
    bool isReady() const;
    Answer askForSource();

    PulseLoop loop_;
    PulseContext context_;
    int errorCode_ = PA_OK;
};

} // namespace orlune
