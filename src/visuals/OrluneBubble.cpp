#include "visuals/OrluneBubble.h"

namespace orlune {

QPainterPath OrluneBubble::path(const QRectF& rectangle) {
    const auto at = [&](double x, double y) {
        return QPointF(rectangle.left() + x * rectangle.width(),
                       rectangle.top() + y * rectangle.height());
    };
    QPainterPath path;
    path.moveTo(at(0.2, 0.1));
    path.lineTo(at(0.8, 0.1));
    path.quadTo(at(0.92, 0.1), at(0.92, 0.23));
    path.lineTo(at(0.92, 0.64));
    path.quadTo(at(0.92, 0.77), at(0.8, 0.77));
    path.lineTo(at(0.61, 0.77));
    path.lineTo(at(0.4, 0.94)); // the tip of the tail
    path.lineTo(at(0.44, 0.77));
    path.lineTo(at(0.2, 0.77));
    path.quadTo(at(0.08, 0.77), at(0.08, 0.64));
    path.lineTo(at(0.08, 0.23));
    path.quadTo(at(0.08, 0.1), at(0.2, 0.1));
    path.closeSubpath();
    return path;
}

} // namespace orlune
