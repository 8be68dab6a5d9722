// A named thread with its own GLib context, for libraries that use D-Bus through GLib. Jobs run on
// it one at a time, in the order in which they were posted; a job waits for GLib's asynchronous
// operations with `await`. Ending the thread never takes longer than `endGrace`, whatever an
// operation is waiting for.
#pragma once

#include "platform/linux/secrets/GlibHandles.h"

#include <chrono>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace orlune {

class GlibThread {
  public:
    /// Long enough for the other side of the bus to answer a cancellation, short enough for
    /// quitting.
    static constexpr auto endGrace = std::chrono::milliseconds(200);

    /// `name` has at most 15 characters. `atEnd` runs on the thread after its last job and must
    /// release GLib's objects, which clean up in their thread's context.
    GlibThread(const char* name, std::function<void()> atEnd);
    ~GlibThread();
    GlibThread(const GlibThread&) = delete;
    GlibThread& operator=(const GlibThread&) = delete;

    /// From any thread. Jobs that have not begun when the thread ends are dropped. An exception
    /// that escapes a job is a bug and ends the program.
    void post(std::function<void()> job);

    /// Only on the thread itself: starts an operation and runs the context until it has completed.
    /// `start` receives the callback and its argument. Empty when the thread is ending and the
    /// operation has not completed within `endGrace`.
    template <typename Start>
    GlibObject<GAsyncResult> await(Start start) {
        auto* completion = new Completion;
        start(&GlibThread::complete, static_cast<gpointer>(completion));
        return awaitCompletion(completion);
    }

    /// Cancelled when the thread ends; to be passed to every operation.
    GCancellable* ending() const { return ending_.get(); }
    /// Only on the thread itself: true once the thread is ending.
    bool isEnding() const { return graceEnd_.has_value(); }

  private:
    struct Completion {
        GlibObject<GAsyncResult> result;
        bool isAwaited = true;
    };

    static void complete(GObject* source, GAsyncResult* result, gpointer completion);
    GlibObject<GAsyncResult> awaitCompletion(Completion* completion);
    void run(const std::function<void()>& atEnd);
    void turn();

    GlibMainContext context_;
    GlibObject<GCancellable> ending_;
    std::mutex mutex_; ///< guards `jobs_` and `isStopped_`
    std::deque<std::function<void()>> jobs_;
    bool isStopped_ = false;
    std::optional<std::chrono::steady_clock::time_point> graceEnd_; ///< only used on the thread
    std::thread thread_;
};

} // namespace orlune
