#include "ui/Animation.h"

#include <cmath>
#include <utility>

namespace orlune::ui {

void Animation::run(const Spring& spring, Apply apply, Completion completion) {
    constexpr double millisecondsPerSecond = 1000;
    const int end = static_cast<int>(std::ceil(spring.settlingDuration() * millisecondsPerSecond));
    start(
        end,
        [spring](int milliseconds) { return spring.value(milliseconds / millisecondsPerSecond); },
        std::move(apply), std::move(completion));
}

void Animation::run(std::chrono::milliseconds duration, const QEasingCurve& curve, Apply apply,
                    Completion completion) {
    const int end = static_cast<int>(duration.count());
    start(
        end,
        [curve, end](int milliseconds) {
            return curve.valueForProgress(static_cast<double>(milliseconds) / end);
        },
        std::move(apply), std::move(completion));
}

void Animation::start(int milliseconds, std::function<double(int)> curve, Apply apply,
                      Completion completion) {
    stop();
    milliseconds_ = milliseconds;
    curve_ = std::move(curve);
    apply_ = std::move(apply);
    completion_ = std::move(completion);
    QAbstractAnimation::start();
}

void Animation::updateCurrentTime(int milliseconds) {
    if (apply_) {
        apply_(milliseconds >= milliseconds_ ? 1 : curve_(milliseconds));
    }
}

void Animation::updateState(State newState, State oldState) {
    if (newState != Stopped || oldState != Running || currentTime() < milliseconds_) {
        return;
    }
    // The completion may start the next movement.
    if (const auto completion = std::exchange(completion_, {})) {
        completion();
    }
}

FrameTimer::FrameTimer(QWidget& view, std::function<void()> frame)
    : frame_(std::move(frame)), visibility_(view, [this](bool /*isSeen*/) { update(); }) {}

void FrameTimer::setWanted(bool isWanted) {
    isWanted_ = isWanted;
    update();
}

void FrameTimer::timerEvent(QTimerEvent* /*event*/) {
    frame_();
}

void FrameTimer::update() {
    constexpr int frameMilliseconds = 17; // whole milliseconds; 16 would exceed 60 frames a second
    const bool runs = isWanted_ && visibility_.isSeen();
    if (runs && !timer_.isActive()) {
        timer_.start(frameMilliseconds, Qt::PreciseTimer, this);
    } else if (!runs) {
        timer_.stop();
    }
}

} // namespace orlune::ui
