// Computes the bars of the live meter pixel by pixel. At this size, and tens of times a second,
// this costs a fraction of filling their paths with gradients and blurring their glow. Any thread.
#pragma once

#include <QColor>
#include <QImage>
#include <QRectF>

namespace orlune {

struct GlowingBar {
    QRectF rectangle;  ///< upright, with half circles as ends; in pixels
    double glowRadius; ///< pixels, as a shadow's: the blur's standard deviation is half of it
    double glowOpacity;
    QColor top;
    QColor bottom;
    QColor glow;
};

/// Paints over the contents of `image`, which is premultiplied ARGB. What lies outside of it is
/// clipped.
void paintBar(QImage& image, const GlowingBar& bar);

} // namespace orlune
