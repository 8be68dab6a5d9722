// Movement over time, and repeated frames. Main thread. Nothing wakes the processor while nothing
// moves.
#pragma once

#include "ui/Curves.h"
#include "ui/Visibility.h"

#include <QAbstractAnimation>
#include <QBasicTimer>
#include <QObject>

#include <chrono>
#include <functional>

class QWidget;

namespace orlune::ui {

/// One movement from 0 to 1, which another `run` replaces. Ends with its owner.
class Animation final : public QAbstractAnimation {
  public:
    /// Receives the progress: first 0, last exactly 1. A spring may exceed 1 in between.
    using Apply = std::function<void(double progress)>;
    using Completion = std::function<void()>;

    /// Both apply the first step at once. `completion` is called when the movement has finished,
    /// not when it is replaced or stopped.
    void run(const Spring& spring, Apply apply, Completion completion = {});
    void run(std::chrono::milliseconds duration, const QEasingCurve& curve, Apply apply,
             Completion completion = {});

    int duration() const override { return milliseconds_; }

  protected:
    void updateCurrentTime(int milliseconds) override;
    void updateState(State newState, State oldState) override;

  private:
    void start(int milliseconds, std::function<double(int)> curve, Apply apply,
               Completion completion);

    int milliseconds_ = 0;
    std::function<double(int milliseconds)> curve_;
    Apply apply_;
    Completion completion_;
};

/// Calls `frame` at most 60 times a second, while it is enabled and `view` can be seen.
class FrameTimer final : public QObject {
  public:
    FrameTimer(QWidget& view, std::function<void()> frame);

    void setWanted(bool isWanted);
    bool isRunning() const { return timer_.isActive(); }

  protected:
    void timerEvent(QTimerEvent* event) override;

  private:
    void update();

    std::function<void()> frame_;
    bool isWanted_ = false;
    QBasicTimer timer_;
    Visibility visibility_;
};

} // namespace orlune::ui
