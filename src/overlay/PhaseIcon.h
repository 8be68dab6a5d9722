// The icon at the left of the overlay's capsule: the waveform while listening, the glow while
// processing, a badge for the outcome. Only the visible one moves. Main thread.
#pragma once

#include "dictation/AppState.h"
#include "platform/DisplayOptions.h"

#include <QStackedWidget>

namespace orlune {

class VoiceWaveform;

class PhaseIcon final : public QStackedWidget {
  public:
    /// Points.
    static constexpr int side = 42;

    PhaseIcon(const WaveformState& waveform, const DisplayOptions& displayOptions);

    void setPhase(AppState::Phase::Case phase);
    /// The colour behind the icon, which must be uniform.
    void setBackground(const QColor& background);

  private:
    VoiceWaveform* waveform_;
};

} // namespace orlune
