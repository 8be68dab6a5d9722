// The visual elements cost nothing while they cannot be seen, and move less where the user wants
// that.

#include "platform/memory/MemoryDisplayOptions.h"
#include "visuals/ProcessingGlow.h"
#include "visuals/VoiceWaveform.h"

#include <QApplication>
#include <QBackingStore>
#include <QEvent>
#include <QGraphicsOpacityEffect>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
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

/// Of any channel of any pixel, 0 to 255.
int largestDifference(const QImage& first, const QImage& second) {
    int largest = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x) {
            const QColor one = first.pixelColor(x, y);
            const QColor other = second.pixelColor(x, y);
            largest = std::max({largest, std::abs(one.red() - other.red()),
                                std::abs(one.green() - other.green()),
                                std::abs(one.blue() - other.blue())});
        }
    }
    return largest;
}

TEST(VoiceWaveformTest, isPaintedAloneWhereItsBackgroundIsKnownAndNothingFades) {
    const MemoryDisplayOptions options;
    WaveformState model;
    QWidget window;
    window.setPalette(QPalette(Qt::darkGreen));
    window.setFixedSize(120, 80);
    auto* const meter = new VoiceWaveform(model, overlaySize, options);
    meter->setParent(&window);
    meter->move(30, 20);
    PaintCounter paintsBehind(window);
    const auto shown = [&] {
        return dynamic_cast<const QImage&>(*window.backingStore()->paintDevice()).copy();
    };
    window.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    QApplication::processEvents();

    meter->setBackground(Qt::darkGreen);
    paintsBehind.count = 0;
    for (const double level : {1.0, 0.5, 0.0}) {
        const auto before = shown();
        model.push(level);
        EXPECT_NE(shown(), before);
    }
    EXPECT_EQ(paintsBehind.count, 0);
    EXPECT_LE(largestDifference(shown(), window.grab().toImage()), 2)
        << "higher bars leave no trace";

    auto* const effect = new QGraphicsOpacityEffect(&window);
    effect->setOpacity(0.5);
    meter->setGraphicsEffect(effect);
    QApplication::processEvents();
    paintsBehind.count = 0;
    model.push(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return paintsBehind.count > 0; }))
        << "while it fades, all of it is composed anew";
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
