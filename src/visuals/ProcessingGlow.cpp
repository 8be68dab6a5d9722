#include "visuals/ProcessingGlow.h"

#include "ui/AccessibleElement.h"
#include "ui/Style.h"
#include "visuals/OrlunePalette.h"

#include <QConicalGradient>
#include <QPainter>

#include <chrono>
#include <cmath>

namespace orlune {

namespace {

constexpr double fullTurn = 360; // degrees
constexpr double degreesPerSecond = 150;

constexpr double ringOpacity = 0.14;
constexpr double ringWidth = 2; // points

// The part of the circle that the arc covers, clockwise from the right.
constexpr double arcStart = 0.05;
constexpr double arcEnd = 0.72;
constexpr double arcWidth = 2.4; // points

constexpr double coreOpacity = 0.62;
constexpr double coreShare = 0.2; // of the spinner's size
constexpr double coreBlur = 1.5;  // points, the blur's standard deviation

double secondsNow() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

QPainterPath circle(double diameter) {
    QPainterPath path;
    path.addEllipse(QPointF(), diameter / 2, diameter / 2);
    return path;
}

QPen pen(const QBrush& brush, double width, Qt::PenCapStyle cap) {
    QPen result(brush, width, Qt::SolidLine, cap, Qt::MiterJoin);
    result.setMiterLimit(10);
    return result;
}

QPainterPath arc(double diameter) {
    // Qt counts angles counter-clockwise.
    const QRectF bounds(-diameter / 2, -diameter / 2, diameter, diameter);
    QPainterPath path;
    path.arcMoveTo(bounds, -arcStart * fullTurn);
    path.arcTo(bounds, -arcStart * fullTurn, -(arcEnd - arcStart) * fullTurn);
    return path;
}

QConicalGradient arcGradient() {
    QConicalGradient gradient(QPointF(), 0);
    gradient.setColorAt(1, OrlunePalette::accentBright());
    gradient.setColorAt(0.5, OrlunePalette::accent());
    gradient.setColorAt(0, Qt::transparent);
    return gradient;
}

} // namespace

double ProcessingGlow::rotation(double seconds) {
    return std::fmod(degreesPerSecond * seconds, fullTurn);
}

ProcessingGlow::ProcessingGlow(double size, const DisplayOptions& displayOptions)
    : size_(size), displayOptions_(displayOptions),
      // The standard deviation of a shadow is half its radius.
      core_(ui::withOpacity(OrlunePalette::accent(), coreOpacity), 2 * coreBlur, QPointF()),
      frames_(*this, [this] { update(); }), observation_(*this, [this] {
          frames_.setWanted(!displayOptions_.shouldReduceMotion());
          update();
      }) {
    const int side = static_cast<int>(std::ceil(size)) + 2 * overflow;
    setFixedSize(side, side);
    ui::hideFromAccessibility(*this);
    observation_.observe(displayOptions.shouldReduceMotion());
}

void ProcessingGlow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.translate(QRectF(rect()).center());
    const QColor ring = ui::withOpacity(ui::color(ui::Style::primary), ringOpacity);
    painter.strokePath(circle(size_), pen(ring, ringWidth, Qt::FlatCap));

    painter.save();
    painter.rotate(displayOptions_.shouldReduceMotion() ? 0 : rotation(secondsNow()));
    painter.strokePath(arc(size_), pen(arcGradient(), arcWidth, Qt::RoundCap));
    painter.restore();

    core_.paint(painter, circle(coreShare * size_));
}

} // namespace orlune
