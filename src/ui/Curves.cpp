#include "ui/Curves.h"

#include <cmath>
#include <numbers>

namespace orlune::ui {

double Spring::angularFrequency() const {
    return 2 * std::numbers::pi / response_;
}

double Spring::value(double seconds) const {
    if (seconds <= 0) {
        return 0;
    }
    const double frequency = angularFrequency();
    const double decay = std::exp(-dampingFraction_ * frequency * seconds);
    if (dampingFraction_ >= 1) {
        return 1 - decay * (1 + frequency * seconds);
    }
    const double damped = frequency * std::sqrt(1 - dampingFraction_ * dampingFraction_);
    return 1
           - decay
                 * (std::cos(damped * seconds)
                    + dampingFraction_ * frequency / damped * std::sin(damped * seconds));
}

double Spring::settlingDuration() const {
    constexpr double invisible = 0.001;
    const double frequency = angularFrequency();
    // The envelope of the oscillation only falls, so its first time below the limit is the last.
    const auto envelope = [&](double seconds) {
        const double decay = std::exp(-dampingFraction_ * frequency * seconds);
        return dampingFraction_ >= 1 ? decay * (1 + frequency * seconds)
                                     : decay / std::sqrt(1 - dampingFraction_ * dampingFraction_);
    };
    double seconds = 0;
    while (envelope(seconds) > invisible) {
        seconds += response_ / 100;
    }
    return seconds;
}

QEasingCurve cubicBezier(QPointF first, QPointF second) {
    QEasingCurve curve(QEasingCurve::BezierSpline);
    curve.addCubicBezierSegment(first, second, {1, 1});
    return curve;
}

QEasingCurve easeIn() {
    return cubicBezier({0.42, 0}, {1, 1});
}

} // namespace orlune::ui
