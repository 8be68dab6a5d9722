// The visual elements cost nothing while nobody sees them, and move less where that is wanted.

#include "platform/memory/MemoryDisplayOptions.h"
#include "visuals/ProcessingGlow.h"
#include "visuals/VoiceWaveform.h"

#include <QApplication>
#include <QEvent>
#include <gtest/gtest.h>

#include <numbers>
#include <utility>

namespace orlune {
namespace {

constexpr double overlaySize = 42;

VoiceWaveform::Bar middleBar(const WaveformState::Frame& frame, bool reduceMotion = false) {
    return VoiceWaveform::bar(/*weight=*/1, /*phaseOffset=*/3.1, frame, overlaySize, reduceMotion);
}

TEST(VoiceWaveformTest, reducedMotionLeavesOutThePulseAndKeepsTheRipple) {
    const WaveformState::Frame frame{.calmLevel = 0.5, .speechPulse = 1, .motionPhase = 0};
    const auto bar = middleBar(frame, /*reduceMotion=*/true);
    EXPECT_EQ(bar, middleBar({.calmLevel = 0.5}));
    EXPECT_LT(bar.height, middleBar(frame).height);
    auto later = frame;
    later.motionPhase = std::numbers::pi / 4.2;
    EXPECT_NE(middleBar(later, /*reduceMotion=*/true), bar);
}

/// Counts how often a widget is painted.
class PaintCounter : public QObject {
  public:
    explicit PaintCounter(QWidget& widget) { widget.installEventFilter(this); }
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        count += event->type() == QEvent::Paint;
        return false;
    }
    int count = 0;
};

TEST(VoiceWaveformTest, isPaintedOnceForManyFramesAndNeverWhileHidden) {
    const MemoryDisplayOptions options;
    WaveformState model;
    VoiceWaveform meter(model, overlaySize, options);
    PaintCounter paints(meter);
    const auto paintWhatIsAskedFor = [&] {
        QApplication::processEvents();
        QEvent request(QEvent::UpdateRequest);
        QApplication::sendEvent(&meter, &request);
        return std::exchange(paints.count, 0);
    };
    const auto paintsAfterPushing = [&](double level) {
        paintWhatIsAskedFor();
        for (int times = 0; times < 5; ++times) {
            model.push(level);
        }
        return paintWhatIsAskedFor();
    };
    meter.show();
    EXPECT_EQ(paintsAfterPushing(0.5), 1);
    model.reset();
    EXPECT_EQ(paintsAfterPushing(0), 0) << "silence that goes on changes nothing";
    meter.hide();
    EXPECT_EQ(paintsAfterPushing(0.5), 0);
}

TEST(ProcessingGlowTest, turnsOnlyWhileItIsSeenAndMovementIsWanted) {
    MemoryDisplayOptions options;
    ProcessingGlow glow(30, options);
    EXPECT_FALSE(glow.isTurning());
    glow.show();
    QApplication::processEvents();
    EXPECT_TRUE(glow.isTurning());
    options.reduceMotion.set(true);
    QApplication::processEvents();
    EXPECT_FALSE(glow.isTurning());
    options.reduceMotion.set(false);
    QApplication::processEvents();
    EXPECT_TRUE(glow.isTurning());
    glow.hide();
    EXPECT_FALSE(glow.isTurning());
}

} // namespace
} // namespace orlune
