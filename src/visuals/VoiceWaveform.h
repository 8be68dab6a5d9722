// The live level meter: five bars that rise with the voice and ripple while somebody speaks. Reads
// a WaveformState that outlives it, on the main thread. It is painted again only when a published
// frame changes the bars and the meter can be seen.
#pragma once

#include "core/WaveformState.h"
#include "platform/DisplayOptions.h"
#include "ui/Observation.h"
#include "ui/Shadow.h"

#include <QWidget>

#include <array>
#include <map>

namespace orlune {

class VoiceWaveform final : public QWidget {
  public:
    struct Bar {
        double width = 0;       ///< points
        double height = 0;      ///< points, at most 0.7 of the meter's size once that exceeds 4
        double glowOpacity = 0; ///< 0 to 0.22

        bool operator==(const Bar&) const = default;
    };

    /// `weight`: how far the bar rises, 0 to 1. `phaseOffset`: where in the ripple it stands,
    /// radians. With `reduceMotion` it follows the voice without the jump at each syllable.
    static Bar bar(double weight, double phaseOffset, const WaveformState::Frame& frame,
                   double size, bool reduceMotion);

    /// A square of `size` points.
    VoiceWaveform(const WaveformState& model, double size, const DisplayOptions& displayOptions);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    static constexpr int barCount = 5;

    std::array<Bar, barCount> bars() const;
    void paintGlow(QPainter& painter, const QRectF& rectangle, double opacity);

    const WaveformState& model_;
    double size_;
    const DisplayOptions& displayOptions_;
    std::array<Bar, barCount> painted_;
    std::map<int, ui::Shadow> glows_; ///< by the height of the bar in whole points
    ui::Observation observation_;
};

} // namespace orlune
