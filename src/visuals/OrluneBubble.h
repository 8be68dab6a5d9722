// A speech bubble with its tail below, left of the centre. A pure function.
#pragma once

#include <QPainterPath>
#include <QRectF>

namespace orlune {

struct OrluneBubble {
    /// Stretched to `rectangle`.
    static QPainterPath path(const QRectF& rectangle);
};

} // namespace orlune
