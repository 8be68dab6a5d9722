// Soft shadows. A shadow is blurred once per size and kept by its owner; painting it again copies
// an image. Main thread.
#pragma once

#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <QPointF>
#include <QRectF>

class QPainter;

namespace orlune::ui {

/// `image` blurred by a Gaussian with a standard deviation of `deviation` pixels, approximated by
/// three box filters; the difference is invisible. Input and output are premultiplied.
QImage blurred(const QImage& image, double deviation);

class Shadow {
  public:
    /// `radius` in points: the blur's standard deviation is half of it.
    Shadow(QColor color, double radius, QPointF offset)
        : color_(color), radius_(radius), offset_(offset) {}

    /// Paints the shadow of `outline`. The last blurred image is reused while the outline's bounds
    /// and the device's scale stay the same.
    void paint(QPainter& painter, const QPainterPath& outline);

  private:
    QColor color_;
    double radius_;
    QPointF offset_;
    QRectF bounds_;
    QImage image_;
};

} // namespace orlune::ui
