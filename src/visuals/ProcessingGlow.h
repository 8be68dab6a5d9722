// The spinner: an arc that turns around a soft core. Main thread. It moves only while it can be
// seen and the user wants movement; otherwise no timer runs and the arc stays at its starting
// angle.
#pragma once

#include "platform/DisplayOptions.h"
#include "ui/Animation.h"
#include "ui/Observation.h"
#include "ui/Shadow.h"

#include <QWidget>

namespace orlune {

class ProcessingGlow final : public QWidget {
  public:
    /// The ring's line is centred on the circle of `size` points, so half of it lies outside: the
    /// widget is this many points larger on each side.
    static constexpr int overflow = 2;

    /// Degrees clockwise, 0 to 360.
    static double rotation(double seconds);

    ProcessingGlow(double size, const DisplayOptions& displayOptions);

    bool isTurning() const { return frames_.isRunning(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    double size_;
    const DisplayOptions& displayOptions_;
    ui::Shadow core_;
    ui::FrameTimer frames_;
    ui::Observation observation_;
};

} // namespace orlune
