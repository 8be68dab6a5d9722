#include "platform/linux/runtime/QtMainActor.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QThread>
#include <boost/asio/execution.hpp>
#include <boost/asio/execution_context.hpp>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <exception>
#include <mutex>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace orlune {

namespace asio = boost::asio;

namespace {

/// One posted work item. Asio's function objects are move-only, which std::function does not
/// support.
class Work {
  public:
    virtual ~Work() = default;
    virtual void run() = 0;
};

template <typename Function>
class FunctionWork final : public Work {
  public:
    explicit FunctionWork(Function function) : function_(std::move(function)) {}
    void run() override { std::move(function_)(); }

  private:
    Function function_;
};

bool isMainThread() {
    const auto* application = QCoreApplication::instance();
    return application && QThread::currentThread() == application->thread();
}

} // namespace

/// The queue between the posting threads and Qt's loop, which an eventfd wakes. Outlives the actor
/// while an executor still refers to it, and refuses work then.
class QtMainActor::Mailbox : public asio::execution_context {
  public:
    Mailbox() : wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (wakeUp_ < 0) {
            throw std::system_error(errno, std::generic_category(), "eventfd");
        }
        notifier_ = std::make_unique<QSocketNotifier>(wakeUp_, QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { runQueued(); });
    }

    ~Mailbox() {
        shutdown();
        destroy();
        ::close(wakeUp_);
    }

    void post(std::unique_ptr<Work> work) {
        bool wasEmpty = false;
        {
            const std::lock_guard lock(mutex_);
            if (isClosed_) {
                return;
            }
            wasEmpty = queue_.empty();
            queue_.push_back(std::move(work));
        }
        if (wasEmpty) {
            wake();
        }
    }

    void close() {
        notifier_.reset();
        // Released outside the lock, because work may post again while it is destroyed.
        std::deque<std::unique_ptr<Work>> dropped;
        const std::lock_guard lock(mutex_);
        isClosed_ = true;
        dropped.swap(queue_);
    }

  private:
    void wake() const {
        const std::uint64_t one = 1;
        // Only fails when the counter is full, and then the loop has already been woken.
        [[maybe_unused]] const auto written = ::write(wakeUp_, &one, sizeof one);
    }

    /// Runs the work that was queued when the turn began. Work that it posts waits for the next
    /// turn, so that windows and input are served in between. Items leave the queue one by one, so
    /// that a nested event loop within one continues with the next.
    void runQueued() {
        std::uint64_t count = 0;
        [[maybe_unused]] const auto seen = ::read(wakeUp_, &count, sizeof count);
        std::size_t remaining = 0;
        {
            const std::lock_guard lock(mutex_);
            remaining = queue_.size();
        }
        for (; remaining > 0; --remaining) {
            std::unique_ptr<Work> work;
            {
                const std::lock_guard lock(mutex_);
                if (queue_.empty()) {
                    return;
                }
                work = std::move(queue_.front());
                queue_.pop_front();
                if (!queue_.empty()) {
                    wake();
                }
            }
            runOne(*work);
        }
    }

    /// The loop's only exception barrier: an exception that reaches Qt would end the program
    /// silently.
    static void runOne(Work& work) {
        try {
            work.run();
        } catch (const std::exception& error) {
            std::fprintf(stderr, "orlune: an error escaped the main actor: %s\n", error.what());
        }
    }

    const int wakeUp_;
    std::unique_ptr<QSocketNotifier> notifier_; // only touched on the main thread
    std::mutex mutex_;
    bool isClosed_ = false;
    std::deque<std::unique_ptr<Work>> queue_;
};

/// The Asio executor. Posted work always waits for a later turn. Dispatched work runs at once when
/// already on the main thread, which Asio's cancellation relies on.
class QtMainActor::MailboxExecutor {
  public:
    explicit MailboxExecutor(std::shared_ptr<Mailbox> mailbox) : mailbox_(std::move(mailbox)) {}

    template <typename Function>
    void execute(Function function) const {
        if (mayRunAtOnce_ && isMainThread()) {
            std::move(function)();
        } else {
            mailbox_->post(std::make_unique<FunctionWork<Function>>(std::move(function)));
        }
    }

    asio::execution_context& query(asio::execution::context_t) const noexcept { return *mailbox_; }
    asio::execution::blocking_t query(asio::execution::blocking_t) const noexcept {
        return mayRunAtOnce_ ? asio::execution::blocking_t(asio::execution::blocking.possibly)
                             : asio::execution::blocking_t(asio::execution::blocking.never);
    }
    MailboxExecutor require(asio::execution::blocking_t::possibly_t) const {
        return MailboxExecutor(mailbox_, /*mayRunAtOnce=*/true);
    }
    MailboxExecutor require(asio::execution::blocking_t::never_t) const {
        return MailboxExecutor(mailbox_, /*mayRunAtOnce=*/false);
    }

    bool operator==(const MailboxExecutor&) const noexcept = default;

  private:
    MailboxExecutor(std::shared_ptr<Mailbox> mailbox, bool mayRunAtOnce)
        : mailbox_(std::move(mailbox)), mayRunAtOnce_(mayRunAtOnce) {}

    std::shared_ptr<Mailbox> mailbox_;
    bool mayRunAtOnce_ = true;
};

QtMainActor::QtMainActor() : mailbox_(std::make_shared<Mailbox>()) {}

QtMainActor::~QtMainActor() {
    mailbox_->close();
}

Executor QtMainActor::executor() const {
    return Executor(MailboxExecutor(mailbox_));
}

bool QtMainActor::isCurrent() const {
    return isMainThread();
}

} // namespace orlune
