// The live level meter: five bars that rise with the voice and ripple while somebody speaks. Reads
// a WaveformState that outlives it, on the main thread. It is painted again only when a published
// frame changes the bars and the meter can be seen; where its background is known, nothing else is
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

    /// `weight`: how far the bar rises, 0 to 1. `phaseOffset`: where in the ripple it stands,
    /// radians. With `reduceMotion` it follows the voice without the jump at each syllable.
    static Bar bar(double weight, double phaseOffset, const WaveformState::Frame& frame,
                   double size, bool reduceMotion);

    /// A square of `size` points.
    VoiceWaveform(const WaveformState& model, double size, const DisplayOptions& displayOptions);

    /// What everything behind the meter adds up to, the same in all of its square.
    void setBackground(const QColor& background) { background_ = background; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    static constexpr int barCount = 5;

    std::array<Bar, barCount> bars() const;
    void showBars();
    bool showsBarsAlone();
    /// Over what is there, or where it is known, over nothing but that.
    void paint(QPainter& painter, const QColor& background);
    void paintBars(QImage& picture, const QTransform& toPixels) const;

    double size_;
    const DisplayOptions& displayOptions_;
    QColor background_; ///< invalid where it is not known
    WaveformState::Frame frame_;
    std::array<Bar, barCount> painted_;
    ui::Observation observation_;
    Subscription frames_;
};

} // namespace orlune
