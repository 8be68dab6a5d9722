// Keeps a view up to date with the objects it shows. Any number of changes in one turn of the loop
// cause one refresh, in the next turn, when the changes are stored; a view that cannot be seen is
// refreshed when it is shown. Main thread; must be the last member of the view.
#pragma once

#include "platform/concurrency/Published.h"

#include <QObject>

#include <functional>
#include <vector>

class QWidget;

namespace orlune::ui {

class Observation final : public QObject {
  public:
    /// `refresh` reads the observed objects and shows their state. It is not called yet.
    Observation(QWidget& view, std::function<void()> refresh);
    /// For something that is always shown, such as an icon in another program's panel.
    explicit Observation(std::function<void()> refresh);

    void observe(ObservableObject& object);
    template <typename Value>
    void observe(const Published<Value>& property) {
        subscriptions_.push_back(property.subscribe([this](const Value&) { invalidate(); }));
    }

    /// Behaves as if an observed object had changed.
    void invalidate();

    bool eventFilter(QObject* watched, QEvent* event) override;

  protected:
    void customEvent(QEvent* event) override;

  private:
    bool isSeen() const;
    void refreshNow();

    QWidget* view_ = nullptr;
    std::function<void()> refresh_;
    bool isStale_ = true;
    bool isScheduled_ = false;
    std::vector<Subscription> subscriptions_;
};

} // namespace orlune::ui
