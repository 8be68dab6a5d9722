// A property that announces each change before it is stored, to its own observers and to those of
// the object it belongs to. Only used on the main actor. Subscribing returns a handle; dropping the
// handle ends delivery.
#pragma once

#include "platform/concurrency/Signal.h"

#include <functional>
#include <utility>

namespace orlune {

/// The base of an object with published properties; observers of the whole object are called for
/// every change.
class ObservableObject {
  public:
    /// Called before any published property takes its new value.
    [[nodiscard]] Subscription onChange(const std::function<void()>& observer) {
        return objectWillChange.connect(observer);
    }

    Signal<void()> objectWillChange;

  protected:
    ~ObservableObject() = default;
};

template <typename Value>
class Published {
  public:
    Published(ObservableObject& owner, Value initial) : owner_(owner), value_(std::move(initial)) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    const Value& get() const { return value_; }
    operator const Value&() const { return value_; }

    /// Announces, then stores, even when the value is unchanged.
    void set(Value value) {
        owner_.objectWillChange();
        willChange_(value);
        value_ = std::move(value);
    }

    /// The observer receives the value that is about to be stored.
    [[nodiscard]] Subscription subscribe(const std::function<void(const Value&)>& observer) const {
        return willChange_.connect(observer);
    }

  private:
    ObservableObject& owner_;
    mutable Signal<void(const Value&)> willChange_;
    Value value_;
};

} // namespace orlune
