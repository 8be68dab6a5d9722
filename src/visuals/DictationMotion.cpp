#include "visuals/DictationMotion.h"

#include "ui/AccessibleElement.h"
#include "visuals/ProcessingGlow.h"
#include "visuals/VoiceWaveform.h"

#include <QVBoxLayout>

namespace orlune {

namespace {

constexpr double waveformSize = 42; // points
constexpr double glowSize = 32;     // points

} // namespace

DictationMotion::DictationMotion(const WaveformState& model, bool processing,
                                 const DisplayOptions& displayOptions)
    : waveform_(new VoiceWaveform(model, waveformSize, displayOptions)),
      glow_(new ProcessingGlow(glowSize, displayOptions)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(waveform_, 0, Qt::AlignCenter);
    layout->addWidget(glow_, 0, Qt::AlignCenter);
    ui::hideFromAccessibility(*this);
    setProcessing(processing);
}

void DictationMotion::setProcessing(bool processing) {
    waveform_->setVisible(!processing);
    glow_->setVisible(processing);
}

} // namespace orlune
