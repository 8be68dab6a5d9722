#include "overlay/PhaseIcon.h"

#include "ui/AccessibleElement.h"
#include "ui/Animation.h"
#include "ui/Stack.h"
#include "ui/Surface.h"
#include "ui/Symbol.h"
#include "visuals/OrlunePalette.h"
#include "visuals/ProcessingGlow.h"
#include "visuals/VoiceWaveform.h"

#include <QElapsedTimer>
#include <QPainter>

#include <cmath>
#include <numbers>

namespace orlune {

namespace {

constexpr QSize iconSize{PhaseIcon::side, PhaseIcon::side};

/// A badge with a check mark, which bounces while it is shown.
class SuccessBadge final : public QWidget {
  public:
    explicit SuccessBadge(const DisplayOptions& displayOptions)
        : displayOptions_(displayOptions), frames_(*this, [this] { update(); }) {
        setFixedSize(diameter, diameter);
        ui::hideFromAccessibility(*this);
    }

  protected:
    void showEvent(QShowEvent* /*event*/) override {
        clock_.start();
        frames_.setWanted(!displayOptions_.shouldReduceMotion().get());
    }

    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        ui::paintSurface(painter, rect(),
                         {.shape = ui::Shape::capsule(),
                          .fill = ui::withOpacity(OrlunePalette::success(), 0.14)});
        // Drawn larger than shown, so that it stays sharp at the top of its bounce.
        const double scale = 1 + (frames_.isRunning() ? swing(clock_.elapsed()) : 0);
        const auto mark = ui::symbolPixmap(QStringLiteral("checkmark"), fontSize, ui::Weight::bold,
                                           OrlunePalette::success(), devicePixelRatioF() * highest);
        const QSizeF size = mark.deviceIndependentSize() * highest * scale;
        painter.drawPixmap(
            QRectF(QPointF((width() - size.width()) / 2, (height() - size.height()) / 2), size),
            mark, QRectF(mark.rect()));
    }

  private:
    static constexpr int diameter = 30;
    static constexpr double fontSize = 14;
    static constexpr double highest = 1.14;

    /// A hop of half a second, then half a second of rest, repeated.
    static double swing(qint64 milliseconds) {
        constexpr double period = 1000;
        constexpr double hop = 500;
        const double moment = std::fmod(static_cast<double>(milliseconds), period);
        return moment < hop ? (highest - 1) * std::sin(std::numbers::pi * moment / hop) : 0;
    }

    const DisplayOptions& displayOptions_;
    QElapsedTimer clock_;
    ui::FrameTimer frames_;
};

} // namespace

PhaseIcon::PhaseIcon(const WaveformState& waveform, const DisplayOptions& displayOptions)
    : waveform_(new VoiceWaveform(waveform, side, displayOptions)) {
    setFixedSize(iconSize);
    ui::hideFromAccessibility(*this);
    const auto add = [this](AppState::Phase::Case phase, QWidget* icon) {
        insertWidget(static_cast<int>(phase), ui::framed(icon, iconSize));
    };
    // In the order of the phases, whose values number the pages.
    using enum AppState::Phase::Case;
    add(idle, new ui::Symbol(QStringLiteral("waveform"), {.size = ui::textSize::body}));
    add(listening, waveform_);
    add(processing, new ProcessingGlow(30, displayOptions));
    add(reviewing, new QWidget);
    add(success, new SuccessBadge(displayOptions));
    add(failure, new ui::Symbol(QStringLiteral("exclamationmark.circle.fill"),
                                {.size = 23, .weight = ui::Weight::semibold}, ui::orange()));
}

void PhaseIcon::setBackground(const QColor& background) {
    waveform_->setBackground(background);
}

void PhaseIcon::setPhase(AppState::Phase::Case phase) {
    setCurrentIndex(static_cast<int>(phase));
}

} // namespace orlune
