#include "visuals/VoiceWaveform.h"

#include "ui/AccessibleElement.h"
#include "ui/Shape.h"
#include "visuals/OrlunePalette.h"

#include <QLinearGradient>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace orlune {

namespace {

struct Place {
    double weight;
    double phaseOffset; ///< radians
};

constexpr std::array places{
    Place{0.54, 0.3}, Place{0.78, 1.7}, Place{1.0, 3.1}, Place{0.78, 4.5}, Place{0.54, 5.9},
};

// Shares of the meter's size.
constexpr double spacing = 0.065;
constexpr double glowRadius = 0.07;

} // namespace

VoiceWaveform::Bar VoiceWaveform::bar(double weight, double phaseOffset,
                                      const WaveformState::Frame& frame, double size,
                                      bool reduceMotion) {
    const double pulse = reduceMotion ? 0 : frame.speechPulse;
    const double wave = 0.72 + 0.28 * std::abs(std::sin(2.1 * frame.motionPhase + phaseOffset));
    const double fill = std::min(frame.calmLevel * weight * wave + pulse * weight * 0.42, 1.0);
    return {
        .width = std::max(0.078 * size, 2.5),
        .height = std::max((0.12 + 0.58 * fill) * size, 4.0),
        .glowOpacity = std::min(0.16 * frame.calmLevel + 0.1 * pulse, 0.22),
    };
}

VoiceWaveform::VoiceWaveform(const WaveformState& model, double size,
                             const DisplayOptions& displayOptions)
    : model_(model), size_(size), displayOptions_(displayOptions), observation_(*this, [this] {
          if (bars() != painted_) {
              update();
          }
      }) {
    const int side = static_cast<int>(std::ceil(size));
    setFixedSize(side, side);
    ui::hideFromAccessibility(*this);
    observation_.observe(model.frame());
    observation_.observe(displayOptions.shouldReduceMotion());
}

std::array<VoiceWaveform::Bar, VoiceWaveform::barCount> VoiceWaveform::bars() const {
    static_assert(places.size() == barCount);
    std::array<Bar, barCount> result;
    std::ranges::transform(places, result.begin(), [this](const Place& place) {
        return bar(place.weight, place.phaseOffset, model_.frame(), size_,
                   displayOptions_.shouldReduceMotion());
    });
    return result;
}

void VoiceWaveform::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painted_ = bars();
    const double width = painted_.front().width;
    const double step = width + spacing * size_;
    const QPointF center = QRectF(rect()).center();
    for (int index = 0; index < barCount; ++index) {
        const Bar& bar = painted_[static_cast<std::size_t>(index)];
        QRectF rectangle(0, 0, bar.width, bar.height);
        rectangle.moveCenter(center + QPointF((index - (barCount - 1) / 2.0) * step, 0));
        paintGlow(painter, rectangle, bar.glowOpacity);
        QLinearGradient gradient(rectangle.topLeft(), rectangle.bottomLeft());
        gradient.setColorAt(0, OrlunePalette::orbPearl());
        gradient.setColorAt(1, OrlunePalette::accentBright());
        painter.fillPath(ui::capsule(rectangle), gradient);
    }
}

void VoiceWaveform::paintGlow(QPainter& painter, const QRectF& rectangle, double opacity) {
    if (opacity <= 0) {
        return;
    }
    // One blurred image per point of height: half a point more or less of a glow is not seen.
    const int height = static_cast<int>(std::lround(rectangle.height()));
    const auto [glow, isNew] =
        glows_.try_emplace(height, OrlunePalette::accent(), glowRadius * size_, QPointF());
    painter.save();
    painter.setOpacity(opacity);
    painter.translate(rectangle.center());
    const QRectF outline(-rectangle.width() / 2, -height / 2.0, rectangle.width(), height);
    glow->second.paint(painter, ui::capsule(outline));
    painter.restore();
}

} // namespace orlune
