// A speech bubble with its tail below, left of the middle. A pure function.
#pragma once

#include <QPainterPath>
#include <QRectF>

namespace orlune {

struct OrluneBubble {
    /// Stretched to `rectangle`: a wide one gives a wide bubble.
    static QPainterPath path(const QRectF& rectangle);
};

} // namespace orlune
