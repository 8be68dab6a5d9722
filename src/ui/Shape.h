// The outlines of cards, fields and capsules. Pure functions.
#pragma once

#include <QPainterPath>
#include <QRectF>

namespace orlune::ui {

/// A rectangle whose corners leave the edges gently: the curvature grows from none along the edge
/// to its most in the corner's middle, where it meets the circle of `radius`. `radius` is cut to
/// what the rectangle has room for.
QPainterPath roundedRectangle(const QRectF& rectangle, double radius);

/// A rectangle with half circles at the ends of its longer side.
QPainterPath capsule(const QRectF& rectangle);

/// Which outline a surface has, whatever its size.
class Shape {
  public:
    static Shape rectangle() { return Shape(0); }
    static Shape rounded(double radius) { return Shape(radius); }
    static Shape capsule() { return Shape(capsuleMark); }

    QPainterPath path(const QRectF& rectangle) const;

  private:
    static constexpr double capsuleMark = -1;

    explicit Shape(double radius) : radius_(radius) {}
    double radius_;
};

} // namespace orlune::ui
