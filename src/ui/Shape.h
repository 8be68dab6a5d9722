// The outlines of cards, fields and capsules. Pure functions.
#pragma once

#include <QPainterPath>
#include <QRectF>

namespace orlune::ui {

/// A rectangle with smooth corners: the curvature grows from zero at the edge to its maximum in the
/// middle of the corner, where it touches the circle of `radius`. `radius` is limited to what fits
/// in the rectangle.
QPainterPath roundedRectangle(const QRectF& rectangle, double radius);

/// A rectangle whose shorter sides are half circles.
QPainterPath capsule(const QRectF& rectangle);

/// The kind of outline of a surface, for any size.
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
