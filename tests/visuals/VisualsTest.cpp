// What the visual elements measure, and that they cost nothing while nobody sees them.

#include "platform/memory/MemoryDisplayOptions.h"
#include "visuals/OrluneBubble.h"
#include "visuals/OrluneMark.h"
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

TEST(VoiceWaveformTest, barsOfSilenceAreSmallAndDoNotGlow) {
    const auto bar = middleBar({});
    EXPECT_NEAR(bar.height, 5.04, 1e-9);
    EXPECT_NEAR(bar.width, 3.276, 1e-9);
    EXPECT_EQ(bar.glowOpacity, 0);
    const auto tiny = VoiceWaveform::bar(1, 3.1, {}, /*size=*/10, /*reduceMotion=*/false);
    EXPECT_EQ(tiny.height, 4);
    EXPECT_EQ(tiny.width, 2.5);
}

TEST(VoiceWaveformTest, loudBarsStopBelowTheEdge) {
    const auto bar = middleBar({.calmLevel = 1, .speechPulse = 1});
    EXPECT_NEAR(bar.height, 0.7 * overlaySize, 1e-9);
    EXPECT_NEAR(bar.glowOpacity, 0.22, 1e-9);
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

TEST(ProcessingGlowTest, turnsAHundredAndFiftyDegreesASecond) {
    EXPECT_EQ(ProcessingGlow::rotation(0), 0);
    EXPECT_NEAR(ProcessingGlow::rotation(1), 150, 1e-9);
    EXPECT_NEAR(ProcessingGlow::rotation(3), 90, 1e-9);
}

TEST(OrluneBubbleTest, stretchesToItsRectangle) {
    const auto path = OrluneBubble::path({10, 20, 400, 100});
    const QRectF bounds = path.boundingRect();
    EXPECT_NEAR(bounds.left(), 10 + 0.08 * 400, 1e-9);
    EXPECT_NEAR(bounds.right(), 10 + 0.92 * 400, 1e-9);
    EXPECT_NEAR(bounds.top(), 20 + 0.1 * 100, 1e-9);
    EXPECT_NEAR(bounds.bottom(), 20 + 0.94 * 100, 1e-9);
    EXPECT_TRUE(path.contains(QPointF(10 + 0.41 * 400, 20 + 0.9 * 100))) << "the tail";
}

TEST(OrluneMarkTest, staysReadableWhenTiny) {
    const auto sizes = OrluneMark::measures(10);
    EXPECT_EQ(sizes.barWidth, 1.5);
    EXPECT_EQ(sizes.barHeights.front(), 3);
    EXPECT_EQ(sizes.barHeights.back(), 3);
    EXPECT_NEAR(sizes.barHeights[2], 3.8, 1e-9);
    EXPECT_EQ(sizes.rimWidth, 0.75);
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
