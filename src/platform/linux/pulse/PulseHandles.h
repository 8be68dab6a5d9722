// Owners of libpulse's handles. All except the loop's are used with the loop locked.
#pragma once

#include <pulse/pulseaudio.h>

#include <memory>

namespace orlune {

struct PulseLoopFree {
    void operator()(pa_threaded_mainloop* loop) const {
        pa_threaded_mainloop_stop(loop);
        pa_threaded_mainloop_free(loop);
    }
};
/// Stops its thread first. Must not be destroyed while the loop is locked.
using PulseLoop = std::unique_ptr<pa_threaded_mainloop, PulseLoopFree>;

class PulseLock {
  public:
    explicit PulseLock(pa_threaded_mainloop* loop) : loop_(loop) {
        pa_threaded_mainloop_lock(loop);
    }
    ~PulseLock() { pa_threaded_mainloop_unlock(loop_); }
    PulseLock(const PulseLock&) = delete;
    PulseLock& operator=(const PulseLock&) = delete;

  private:
    pa_threaded_mainloop* loop_;
};

struct PulseContextClose {
    void operator()(pa_context* context) const {
        pa_context_set_state_callback(context, nullptr, nullptr);
        pa_context_disconnect(context);
        pa_context_unref(context);
    }
};
/// No callbacks run after destruction.
using PulseContext = std::unique_ptr<pa_context, PulseContextClose>;

struct PulseStreamClose {
    void operator()(pa_stream* stream) const {
        pa_stream_set_state_callback(stream, nullptr, nullptr);
        pa_stream_set_read_callback(stream, nullptr, nullptr);
        pa_stream_disconnect(stream);
        pa_stream_unref(stream);
    }
};
/// No callbacks run after destruction.
using PulseStream = std::unique_ptr<pa_stream, PulseStreamClose>;

struct PulseOperationCancel {
    void operator()(pa_operation* operation) const {
        pa_operation_cancel(operation);
        pa_operation_unref(operation);
    }
};
/// An answer that arrives after destruction is not delivered.
using PulseOperation = std::unique_ptr<pa_operation, PulseOperationCancel>;

struct PulsePropertiesFree {
    void operator()(pa_proplist* properties) const { pa_proplist_free(properties); }
};
using PulseProperties = std::unique_ptr<pa_proplist, PulsePropertiesFree>;

/// Wakes the loop's thread once, unless destroyed before.
class PulseTimer {
  public:
    PulseTimer(pa_threaded_mainloop* loop, pa_context* context, pa_usec_t delay,
               pa_time_event_cb_t callback, void* userdata)
        : loop_(loop),
          event_(pa_context_rttime_new(context, pa_rtclock_now() + delay, callback, userdata)) {}
    ~PulseTimer() {
        if (event_) {
            pa_threaded_mainloop_get_api(loop_)->time_free(event_);
        }
    }
    PulseTimer(const PulseTimer&) = delete;
    PulseTimer& operator=(const PulseTimer&) = delete;

  private:
    pa_threaded_mainloop* loop_;
    pa_time_event* event_;
};

} // namespace orlune
