#include "visuals/VoiceWaveform.h"

#include "ui/AccessibleElement.h"
#include "ui/CrossFade.h"
#include "visuals/MeterPicture.h"
#include "visuals/OrlunePalette.h"

#include <QBackingStore>
#include <QPainter>
#include <QWindow>

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
    : size_(size), displayOptions_(displayOptions), frame_(model.frame()),
      observation_(*this, [this] { showBars(); }),
      // Painted at once: a frame arrives with each audio delivery, and another turn of the loop
      // costs as much as painting it.
      frames_(model.frame().subscribe([this](const WaveformState::Frame& frame) {
          frame_ = frame;
          showBars();
      })) {
    const int side = static_cast<int>(std::ceil(size));
    setFixedSize(side, side);
    ui::hideFromAccessibility(*this);
    observation_.observe(displayOptions.shouldReduceMotion());
}

std::array<VoiceWaveform::Bar, VoiceWaveform::barCount> VoiceWaveform::bars() const {
    static_assert(places.size() == barCount);
    std::array<Bar, barCount> result;
    std::ranges::transform(places, result.begin(), [this](const Place& place) {
        return bar(place.weight, place.phaseOffset, frame_, size_,
                   displayOptions_.shouldReduceMotion());
    });
    return result;
}

void VoiceWaveform::showBars() {
    if (!isVisible() || bars() == painted_) {
        return;
    }
    if (!showsBarsAlone()) {
        update();
    }
}

/// Paints directly into the window's picture and from there to the screen: finding out what else to
/// repaint costs more than the bars. False when something else must be repainted.
bool VoiceWaveform::showsBarsAlone() {
    auto* const store = window()->backingStore();
    auto* const handle = window()->windowHandle();
    if (!background_.isValid() || ui::isFading(*this) || !store || !handle || !handle->isExposed()
        || store->size() != window()->size()) {
        return false;
    }
    const QPoint place = mapTo(window(), QPoint());
    const QRegion region(rect().translated(place));
    store->beginPaint(region);
    {
        QPainter painter(store->paintDevice());
        painter.translate(place);
        paint(painter, background_);
    }
    store->endPaint();
    store->flush(region, handle);
    return true;
}

void VoiceWaveform::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    paint(painter, {});
}

void VoiceWaveform::paint(QPainter& painter, const QColor& background) {
    painted_ = bars();
    const QTransform toPixels = painter.deviceTransform();
    // The meter may begin within a device pixel; its picture may not.
    const QRect pixels = toPixels.mapRect(QRectF(rect())).toAlignedRect();
    QImage picture(pixels.size(), QImage::Format_ARGB32_Premultiplied);
    if (background.isValid()) {
        picture.fill(background);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
    } else {
        picture.fill(Qt::transparent);
    }
    paintBars(picture, toPixels * QTransform::fromTranslate(-pixels.x(), -pixels.y()));
    picture.setDevicePixelRatio(toPixels.m11());
    painter.drawImage(toPixels.inverted().map(QPointF(pixels.topLeft())), picture);
}

void VoiceWaveform::paintBars(QImage& picture, const QTransform& toPixels) const {
    const double step = painted_.front().width + spacing * size_;
    const QPointF center = QRectF(rect()).center();
    for (int index = 0; index < barCount; ++index) {
        const Bar& bar = painted_[static_cast<std::size_t>(index)];
        QRectF rectangle(0, 0, bar.width, bar.height);
        rectangle.moveCenter(center + QPointF((index - (barCount - 1) / 2.0) * step, 0));
        paintBar(picture, {.rectangle = toPixels.mapRect(rectangle),
                           .glowRadius = glowRadius * size_ * toPixels.m11(),
                           .glowOpacity = bar.glowOpacity,
                           .top = OrlunePalette::orbPearl(),
                           .bottom = OrlunePalette::accentBright(),
                           .glow = OrlunePalette::accent()});
    }
}

} // namespace orlune
