// How things move from one place to another over time. Pure values.
#pragma once

#include <QEasingCurve>
#include <QPointF>

namespace orlune::ui {

/// A weight on a spring that is let go at 0 and comes to rest at 1.
class Spring {
  public:
    /// `response` in seconds, above 0: how long one swing would take without damping.
    /// `dampingFraction`, above 0 to 1: at 1 it does not overshoot.
    constexpr Spring(double response, double dampingFraction)
        : response_(response), dampingFraction_(dampingFraction) {}

    /// Where it is after `seconds`.
    double value(double seconds) const;
    /// After how many seconds it stays within a thousandth of 1, at which nothing is seen to move.
    double settlingDuration() const;

  private:
    double angularFrequency() const;

    double response_;
    double dampingFraction_;
};

/// From (0, 0) to (1, 1) with these control points.
QEasingCurve cubicBezier(QPointF first, QPointF second);
/// The system's standard curve that starts slowly.
QEasingCurve easeIn();

} // namespace orlune::ui
