#include "ui/Observation.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>

#include <utility>

namespace orlune::ui {

Observation::Observation(QWidget& view, std::function<void()> refresh)
    : view_(&view), refresh_(std::move(refresh)) {
    view.installEventFilter(this);
}

Observation::Observation(std::function<void()> refresh) : refresh_(std::move(refresh)) {}

bool Observation::isSeen() const {
    return !view_ || view_->isVisible();
}

void Observation::observe(ObservableObject& object) {
    subscriptions_.push_back(object.onChange([this] { invalidate(); }));
}

void Observation::invalidate() {
    isStale_ = true;
    if (!isScheduled_ && isSeen()) {
        isScheduled_ = true;
        QCoreApplication::postEvent(this, new QEvent(QEvent::User), Qt::HighEventPriority);
    }
}

bool Observation::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show && isStale_) {
        refreshNow();
    }
    return QObject::eventFilter(watched, event);
}

void Observation::customEvent(QEvent* /*event*/) {
    isScheduled_ = false;
    if (isStale_ && isSeen()) {
        refreshNow();
    }
}

void Observation::refreshNow() {
    isStale_ = false;
    refresh_();
}

} // namespace orlune::ui
