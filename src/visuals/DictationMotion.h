// The moving part of a running dictation: the meter while listening, the spinner while processing.
// Main thread; the model must outlive it.
#pragma once

#include "core/WaveformState.h"
#include "platform/DisplayOptions.h"

#include <QWidget>

namespace orlune {

class DictationMotion final : public QWidget {
  public:
    DictationMotion(const WaveformState& model, bool processing,
                    const DisplayOptions& displayOptions);

    void setProcessing(bool processing);

  private:
    QWidget* waveform_;
    QWidget* glow_;
};

} // namespace orlune
