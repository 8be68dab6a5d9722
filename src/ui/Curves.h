// Curves of movement over time. Pure values.
#pragma once

#include <QEasingCurve>
#include <QPointF>

namespace orlune::ui {

/// A damped spring that is released at 0 and comes to rest at 1.
class Spring {
  public:
    /// `response` in seconds, above 0: the period without damping. `dampingFraction`, above 0 to 1:
    /// at 1 it does not overshoot.
    constexpr Spring(double response, double dampingFraction)
        : response_(response), dampingFraction_(dampingFraction) {}

    /// The position after `seconds`.
    double value(double seconds) const;
    /// The seconds after which it stays within a thousandth of 1, where no movement is visible.
    double settlingDuration() const;

  private:
    double angularFrequency() const;

    double response_;
    double dampingFraction_;
};

/// The curve from (0, 0) to (1, 1) with these control points.
QEasingCurve cubicBezier(QPointF first, QPointF second);
/// The system's standard curve that starts slowly.
QEasingCurve easeIn();

} // namespace orlune::ui
