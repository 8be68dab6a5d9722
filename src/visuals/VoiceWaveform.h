// The live level meter: five bars that rise with the voice and ripple during speech. Reads a
// WaveformState, which must outlive it, on the main thread. It is repainted only when a published
// frame changes the bars and the meter can be seen; with a known background, nothing else is
// painted with it.
#pragma once

#include "core/WaveformState.h"
#include "platform/DisplayOptions.h"
#include "ui/Observation.h"

#include <QColor>
#include <QImage>
#include <QTransform>
#include <QWidget>

#include <array>

namespace orlune {

class VoiceWaveform final : public QWidget {
  public:
    struct Bar {
        double width = 0;       ///< points
        double height = 0;      ///< points, at most 0.7 of the meter's size once that exceeds 4
        double glowOpacity = 0; ///< 0 to 0.22

        bool operator==(const Bar&) const = default;
    };

    /// `weight`: how far the bar rises, 0 to 1. `phaseOffset`: its position in the ripple, radians.
    /// With `reduceMotion` it follows the voice without the jump at each syllable.
    static Bar bar(double weight, double phaseOffset, const WaveformState::Frame& frame,
                   double size, bool reduceMotion);

    /// A square of `size` points.
    VoiceWaveform(const WaveformState& model, double size, const DisplayOptions& displayOptions);

    /// The resulting colour of everything behind the meter, uniform over its square.
    void setBackground(const QColor& background) { background_ = background; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    static constexpr int barCount = 5;

    std::array<Bar, barCount> bars() const;
    void showBars();
    bool showsBarsAlone();
    /// Paints over what is there, or over `background` if it is valid.
    void paint(QPainter& painter, const QColor& background);
    void paintBars(QImage& picture, const QTransform& toPixels) const;

    double size_;
    const DisplayOptions& displayOptions_;
    QColor background_; ///< invalid when unknown
    WaveformState::Frame frame_;
    std::array<Bar, barCount> painted_;
    ui::Observation observation_;
    Subscription frames_;
};

} // namespace orlune
