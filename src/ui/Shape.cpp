#include "ui/Shape.h"

#include <algorithm>
#include <numbers>

namespace orlune::ui {

QPainterPath roundedRectangle(const QRectF& rectangle, double radius) {
    // The distance from the corner at which the curve leaves the edge, in radii; a circle leaves it
    // at 1.
    constexpr double reach = 1.28;
    const double halfSide = std::min(rectangle.width(), rectangle.height()) / 2;
    radius = std::clamp(radius, 0.0, halfSide);
    QPainterPath path;
    if (radius <= 0) {
        path.addRect(rectangle);
        return path;
    }
    const double start = std::min(reach * radius, halfSide);
    // One cubic per corner: its middle, (start + 3 * control) / 8 from both edges, lies on the
    // circle.
    const double onCircle = radius * (1 - std::numbers::sqrt2 / 2);
    const double control = (8 * onCircle - start) / 3;

    const double left = rectangle.left();
    const double right = rectangle.right();
    const double top = rectangle.top();
    const double bottom = rectangle.bottom();
    path.moveTo(left + start, top);
    path.lineTo(right - start, top);
    path.cubicTo(right - control, top, right, top + control, right, top + start);
    path.lineTo(right, bottom - start);
    path.cubicTo(right, bottom - control, right - control, bottom, right - start, bottom);
    path.lineTo(left + start, bottom);
    path.cubicTo(left + control, bottom, left, bottom - control, left, bottom - start);
    path.lineTo(left, top + start);
    path.cubicTo(left, top + control, left + control, top, left + start, top);
    path.closeSubpath();
    return path;
}

QPainterPath capsule(const QRectF& rectangle) {
    const double radius = std::min(rectangle.width(), rectangle.height()) / 2;
    QPainterPath path;
    path.addRoundedRect(rectangle, radius, radius);
    return path;
}

QPainterPath Shape::path(const QRectF& rectangle) const {
    return radius_ == capsuleMark ? ui::capsule(rectangle) : roundedRectangle(rectangle, radius_);
}

} // namespace orlune::ui
