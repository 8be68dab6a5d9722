#include "visuals/OrluneMark.h"

#include "ui/AccessibleElement.h"
#include "ui/Shape.h"
#include "ui/Style.h"
#include "ui/Surface.h"
#include "visuals/OrluneBubble.h"
#include "visuals/OrlunePalette.h"

#include <QLinearGradient>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace orlune {

namespace {

constexpr double rimOpacity = 0.16;

QBrush tileFill(const QRectF& square) {
    QLinearGradient gradient(square.topLeft(), square.bottomRight());
    gradient.setColorAt(0, ui::rgb(0.12, 0.11, 0.13));
    gradient.setColorAt(1, ui::rgb(0.035, 0.037, 0.043));
    return gradient;
}

void paintBars(QPainter& painter, const QPointF& middle, const OrluneMark::Measures& measures) {
    const auto& heights = measures.barHeights;
    const auto count = static_cast<int>(heights.size());
    const double step = measures.barWidth + measures.barSpacing;
    for (int index = 0; index < count; ++index) {
        const double fromMiddle = index - (count - 1) / 2.0;
        QRectF bar(0, 0, measures.barWidth, heights[static_cast<std::size_t>(index)]);
        bar.moveCenter(middle + QPointF(fromMiddle * step, -measures.barLift));
        painter.fillPath(ui::capsule(bar),
                         fromMiddle == 0 ? OrlunePalette::accent() : OrlunePalette::orbGraphite());
    }
}

} // namespace

OrluneMark::Measures OrluneMark::measures(double size) {
    const auto barHeight = [size](double share) { return std::max(share * size, 3.0); };
    return {
        .cornerRadius = 0.27 * size,
        .bubblePadding = 0.17 * size,
        .barSpacing = 0.045 * size,
        .barWidth = std::max(0.052 * size, 1.5),
        .barHeights = {barHeight(0.16), barHeight(0.27), barHeight(0.38), barHeight(0.27),
                       barHeight(0.16)},
        .barLift = 0.018 * size,
        .rimWidth = std::max(0.012 * size, 0.75),
    };
}

QPainterPath OrluneMark::outline(const QRectF& square) {
    return ui::roundedRectangle(square, measures(square.width()).cornerRadius);
}

void OrluneMark::paint(QPainter& painter, const QRectF& square) {
    const Measures sizes = measures(square.width());
    const double padding = sizes.bubblePadding;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(outline(square), tileFill(square));
    painter.fillPath(OrluneBubble::path(square.adjusted(padding, padding, -padding, -padding)),
                     OrlunePalette::orbPearl());
    paintBars(painter, square.center(), sizes);
    ui::paintSurface(painter, square,
                     {.shape = ui::Shape::rounded(sizes.cornerRadius),
                      .stroke = ui::withOpacity(Qt::white, rimOpacity),
                      .lineWidth = sizes.rimWidth});
    painter.restore();
}

OrluneMark::OrluneMark(double size) {
    const int side = static_cast<int>(std::ceil(size));
    setFixedSize(side, side);
    ui::hideFromAccessibility(*this);
}

void OrluneMark::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    paint(painter, rect());
}

} // namespace orlune
