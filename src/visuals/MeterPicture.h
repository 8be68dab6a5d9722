// The bars of the live meter, computed pixel by pixel: at this size, and tens of times a second, a
// fraction of what filling their paths with gradients and blurring their glow costs. Any thread.
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

/// Paints over what `image` holds, which is premultiplied ARGB. What lies outside of it is cut.
void paintBar(QImage& image, const GlowingBar& bar);

} // namespace orlune
