#include "platform/linux/secrets/SecretServiceItems.h"

#include "platform/SecureWipe.h"

#include <condition_variable>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <utility>

namespace orlune {

namespace {

using Code = SecretStatus::Code;

void wipeAnswer(SecretItems::Match& match) {
    if (match.data) {
        wipe(*match.data);
    }
}
void wipeAnswer(SecretStatus&) {}

/// The state of one call that the caller and the thread share: either the answer arrives in time,
/// or the caller gives up, never both.
template <typename Answer>
class Call {
  public:
    ~Call() {
        if (answer_) {
            wipeAnswer(*answer_);
        }
    }

    /// False when the caller has given up.
    bool answer(Answer answer) {
        const std::lock_guard lock(mutex_);
        if (isAbandoned_) {
            wipeAnswer(answer);
            return false;
        }
        answer_ = std::move(answer);
        answered_.notify_one();
        return true;
    }
    bool isAwaited() {
        const std::lock_guard lock(mutex_);
        return !isAbandoned_;
    }

    /// False when there is no answer yet.
    bool wait(std::chrono::milliseconds bound) {
        std::unique_lock lock(mutex_);
        return answered_.wait_for(lock, bound, [this] { return answer_.has_value(); });
    }
    /// The answer, if there is one. If there is none, later answers are refused.
    std::optional<Answer> take() {
        const std::lock_guard lock(mutex_);
        isAbandoned_ = !answer_.has_value();
        return std::exchange(answer_, std::nullopt);
    }

  private:
    std::mutex mutex_;
    std::condition_variable answered_;
    std::optional<Answer> answer_;
    bool isAbandoned_ = false;
};

/// A copy of a secret for the thread, overwritten when the last owner releases it.
struct SecretCopy {
    explicit SecretCopy(std::string_view data) : text(data) {}
    SecretCopy(const SecretCopy&) = delete;
    SecretCopy& operator=(const SecretCopy&) = delete;
    ~SecretCopy() { wipe(text); }

    std::string text;
};

} // namespace

SecretServiceItems::Options SecretServiceItems::sessionOptions() {
    Options options;
    options.hasDisplay = std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY");
    return options;
}

SecretServiceItems::SecretServiceItems(Options options) : options_(std::move(options)) {
    session_.emplace(thread_, options_.hasDisplay);
}

template <typename Call>
auto SecretServiceItems::wait(Call& call, std::chrono::milliseconds bound) {
    const auto& prompts = session_->prompts();
    bool isTold = false;
    for (auto changes = prompts.changes.load(); !call.wait(bound);) {
        // The time limit starts anew whenever a prompt opens or closes.
        const bool isAsking = prompts.isStanding || changes != prompts.changes;
        if (!options_.onPrompt || !isAsking) {
            break;
        }
        changes = prompts.changes;
        if (prompts.isStanding && !std::exchange(isTold, true)) {
            options_.onPrompt();
        }
    }
    return call.take();
}

SecretItems::Match SecretServiceItems::copyMatching(const SecretItemQuery& query) {
    const auto call = std::make_shared<Call<Match>>();
    thread_.post([this, call, query] {
        if (call->isAwaited()) {
            call->answer(session_->copyMatching(query));
        }
    });
    auto answer = wait(*call, options_.readBound);
    return answer ? std::move(*answer) : Match{timedOut(options_.readBound), std::nullopt};
}

void SecretServiceItems::checkPresence(const SecretItemQuery& query, PresenceHandler handler) {
    thread_.post([this, query, handler = std::move(handler)] {
        const auto presence = session_->presence(query);
        handler(presence);
    });
}

SecretStatus SecretServiceItems::add(const SecretItemQuery& query, std::string_view data,
                                     SecretAccessibility) {
    const auto call = std::make_shared<Call<SecretStatus>>();
    thread_.post([this, call, query, secret = std::make_shared<const SecretCopy>(data)] {
        const auto isWanted = [&call] { return call->isAwaited(); };
        if (!isWanted()) {
            return;
        }
        auto status = session_->add(query, secret->text, isWanted);
        const bool isSuccess = status.isSuccess();
        if (!call->answer(std::move(status)) && isSuccess) {
            session_->withdraw(query);
        }
    });
    return wait(*call, options_.changeBound).value_or(timedOut(options_.changeBound));
}

SecretStatus SecretServiceItems::remove(const SecretItemQuery& query) {
    const auto call = std::make_shared<Call<SecretStatus>>();
    thread_.post([this, call, query] { call->answer(session_->remove(query)); });
    return wait(*call, options_.changeBound).value_or(timedOut(options_.changeBound));
}

SecretStatus SecretServiceItems::timedOut(std::chrono::milliseconds bound) const {
    if (session_->prompts().isStanding) {
        return {Code::timedOut, "The keyring is waiting to be unlocked. Answer its prompt, then "
                                "try again."};
    }
    return {Code::timedOut,
            "The keyring did not answer within " + std::to_string(bound.count()) + " ms."};
}

} // namespace orlune
