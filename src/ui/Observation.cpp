#include "ui/Observation.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>

#include <utility>

namespace orlune::ui {

Observation::Observation(QWidget& view, std::function<void()> refresh)
    : view_(view), refresh_(std::move(refresh)) {
    view_.installEventFilter(this);
}

void Observation::observe(ObservableObject& object) {
    subscriptions_.push_back(object.onChange([this] { invalidate(); }));
}

void Observation::invalidate() {
    isStale_ = true;
    if (!isScheduled_ && view_.isVisible()) {
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
    if (isStale_ && view_.isVisible()) {
        refreshNow();
    }
}

void Observation::refreshNow() {
    isStale_ = false;
    refresh_();
}

} // namespace orlune::ui
