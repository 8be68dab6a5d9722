#include "platform/linux/secrets/GlibThread.h"

#include <pthread.h>
#include <utility>

namespace orlune {

GlibThread::GlibThread(const char* name, std::function<void()> atEnd)
    : context_(g_main_context_new()), ending_(g_cancellable_new()),
      thread_([this, name, last = std::move(atEnd)] {
          pthread_setname_np(pthread_self(), name);
          run(last);
      }) {}

GlibThread::~GlibThread() {
    {
        const std::lock_guard lock(mutex_);
        isStopped_ = true;
        jobs_.clear();
    }
    g_main_context_wakeup(context_.get());
    thread_.join();
}

void GlibThread::post(std::function<void()> job) {
    {
        const std::lock_guard lock(mutex_);
        jobs_.push_back(std::move(job));
    }
    g_main_context_wakeup(context_.get());
}

void GlibThread::run(const std::function<void()>& atEnd) {
    g_main_context_push_thread_default(context_.get());
    while (!isEnding()) {
        std::function<void()> job;
        {
            const std::lock_guard lock(mutex_);
            if (!jobs_.empty()) {
                job = std::move(jobs_.front());
                jobs_.pop_front();
            }
        }
        if (job) {
            job();
        } else {
            turn();
        }
    }
    atEnd();
    while (g_main_context_pending(context_.get())) {
        g_main_context_iteration(context_.get(), /*may_block=*/FALSE);
    }
    g_main_context_pop_thread_default(context_.get());
}

/// Waits for an event and lets GLib handle it.
void GlibThread::turn() {
    bool isStopped = false;
    {
        const std::lock_guard lock(mutex_);
        isStopped = isStopped_;
    }
    if (isStopped && !isEnding()) {
        graceEnd_ = std::chrono::steady_clock::now() + endGrace;
        const GlibSource timer(g_timeout_source_new(static_cast<guint>(endGrace.count())));
        g_source_set_callback(
            timer.get(), [](gpointer) -> gboolean { return G_SOURCE_REMOVE; }, nullptr, nullptr);
        g_source_attach(timer.get(), context_.get());
        // On this thread, because GLib runs the callbacks within the call.
        g_cancellable_cancel(ending_.get());
    }
    g_main_context_iteration(context_.get(), /*may_block=*/TRUE);
}

void GlibThread::complete(GObject*, GAsyncResult* result, gpointer argument) {
    auto* completion = static_cast<Completion*>(argument);
    if (completion->isAwaited) {
        completion->result.reset(G_ASYNC_RESULT(g_object_ref(result)));
    } else {
        delete completion;
    }
}

GlibObject<GAsyncResult> GlibThread::awaitCompletion(Completion* completion) {
    while (!completion->result) {
        if (graceEnd_ && std::chrono::steady_clock::now() >= *graceEnd_) {
            completion->isAwaited = false; // it may complete later: the callback deletes it
            return nullptr;
        }
        turn();
    }
    auto result = std::move(completion->result);
    delete completion;
    return result;
}

} // namespace orlune
