// Announces to any number of observers. Used on one thread. Within its call, an observer may
// subscribe, end any subscription (including its own) and announce again. An observer that
// subscribes during an announcement receives only later ones.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace orlune {

/// The part of a signal that does not depend on the arguments.
class ObserverList {
  public:
    struct Observer {
        virtual ~Observer() = default;
    };

    void add(std::shared_ptr<Observer> observer) { observers_.push_back(std::move(observer)); }
    /// The observer may be the one that is running; it is kept alive until it returns.
    void remove(const Observer* observer) {
        const auto found = std::ranges::find(observers_, observer, &std::shared_ptr<Observer>::get);
        if (found == observers_.end()) {
            return;
        }
        // The entry is only cleared, because a walk in progress counts positions.
        const auto removed = std::exchange(*found, nullptr);
        if (walks_ == 0) {
            observers_.erase(found);
        }
    }

    template <typename Call>
    void forEach(const Call& call) {
        const Walk walk(*this);
        const std::size_t count = observers_.size();
        for (std::size_t index = 0; index < count; ++index) {
            if (const auto observer = observers_[index]) {
                call(*observer);
            }
        }
    }

  private:
    /// The walk also ends when an observer throws.
    class Walk {
      public:
        explicit Walk(ObserverList& list) : list_(list) { ++list_.walks_; }
        ~Walk() {
            if (--list_.walks_ == 0) {
                std::erase(list_.observers_, nullptr);
            }
        }
        Walk(const Walk&) = delete;
        Walk& operator=(const Walk&) = delete;

      private:
        ObserverList& list_;
    };

    std::vector<std::shared_ptr<Observer>> observers_;
    int walks_ = 0;
};

/// The handle of an observer. Dropping it ends delivery at once; it may outlive the signal.
class Subscription {
  public:
    Subscription() = default;
    Subscription(const std::shared_ptr<ObserverList>& list, const ObserverList::Observer* observer)
        : list_(list), observer_(observer) {}
    ~Subscription() { disconnect(); }
    Subscription(Subscription&& other) noexcept
        : list_(std::move(other.list_)), observer_(std::exchange(other.observer_, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            disconnect();
            list_ = std::move(other.list_);
            observer_ = std::exchange(other.observer_, nullptr);
        }
        return *this;
    }

    void disconnect() {
        const auto* const observer = std::exchange(observer_, nullptr);
        if (const auto list = list_.lock(); list && observer) {
            list->remove(observer);
        }
    }

  private:
    std::weak_ptr<ObserverList> list_;
    const ObserverList::Observer* observer_ = nullptr;
};

template <typename Signature>
class Signal;

template <typename... Arguments>
class Signal<void(Arguments...)> {
  public:
    Signal() = default;
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    [[nodiscard]] Subscription connect(std::function<void(Arguments...)> observer) {
        auto entry = std::make_shared<Entry>();
        entry->observe = std::move(observer);
        const auto* const address = entry.get();
        observers_->add(std::move(entry));
        return Subscription(observers_, address);
    }

    /// Calls the observers in the order in which they subscribed.
    void operator()(Arguments... arguments) const {
        const auto observers = observers_; // an observer may destroy this signal
        observers->forEach([&](ObserverList::Observer& observer) {
            static_cast<Entry&>(observer).observe(arguments...);
        });
    }

  private:
    struct Entry final : ObserverList::Observer {
        std::function<void(Arguments...)> observe;
    };

    std::shared_ptr<ObserverList> observers_ = std::make_shared<ObserverList>();
};

} // namespace orlune
