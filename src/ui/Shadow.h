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

/// `image` blurred like a Gaussian whose standard deviation is `deviation` pixels, by three passes
/// of a mean, which differ from it by less than the eye sees. Premultiplied in, premultiplied out.
QImage blurred(const QImage& image, double deviation);

class Shadow {
  public:
    /// `radius` in points: the blur's standard deviation is half of it.
    Shadow(QColor color, double radius, QPointF offset)
        : color_(color), radius_(radius), offset_(offset) {}

    /// Paints the shadow of `outline`. What the last call has blurred serves again while the
    /// outline's bounds and the device's scale are the same.
    void paint(QPainter& painter, const QPainterPath& outline);

  private:
    QColor color_;
    double radius_;
    QPointF offset_;
    QRectF bounds_;
    QImage image_;
};

} // namespace orlune::ui
