#include "core/WaveformState.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace orlune {
namespace {

constexpr double exact = 1e-12;

void expectFrame(const WaveformState::Frame& frame, const WaveformState::Frame& expected,
                 const char* what) {
    EXPECT_NEAR(frame.level, expected.level, exact) << what;
    EXPECT_NEAR(frame.calmLevel, expected.calmLevel, exact) << what;
    EXPECT_NEAR(frame.voiceActivity, expected.voiceActivity, exact) << what;
    EXPECT_NEAR(frame.speechPulse, expected.speechPulse, exact) << what;
    EXPECT_NEAR(frame.motionPhase, expected.motionPhase, exact) << what;
}

struct PushCase {
    const char* name;
    std::vector<double> inputs;
    WaveformState::Frame frame;
};

TEST(WaveformStateTest, EachPushMovesTheFrameByItsRules) {
    const double softest = 0.96 * std::pow(0.008, 0.68);
    const double softestActivity = 0.88 * (softest - 0.012) / 0.11;
    const double softestPulse = 0.92 * 3.8 * (std::pow(0.008, 0.68) - 0.54 * softest);
    const std::vector<PushCase> cases = {
        {"silence stays silence", {0, 0}, {}},
        {"what lies below the quietest input is silence", {0.0079}, {}},
        {"no level at all is silence", {std::nan("")}, {}},
        {"a full level jumps", {1}, {0.96, 0.5184, 0.88, 0.92, 0.209792}},
        {"more than a full level is a full level", {7}, {0.96, 0.5184, 0.88, 0.92, 0.209792}},
        {"the quietest input is lifted",
         {0.008},
         {softest, 0.54 * softest, softestActivity, softestPulse,
          (softest * 0.14 + 0.012 + softestPulse * 0.1) * softestActivity}},
        {"silence after a full level decays, the activity last",
         {1, 0},
         {0.4992, 0.515328, 0.9856, 0.6992, 0.209792 + (0.069888 + 0.012 + 0.06992) * 0.9856}},
        {"a second full level finds the previous one as its base",
         {1, 1},
         {0.9984, 0.5184 + (0.9984 - 0.5184) * 0.54, 0.9856,
          0.92 + ((1 - 0.7872) * 3.8 - 0.92) * 0.24,
          0.209792 + (0.139776 + 0.012 + (0.92 + (0.80864 - 0.92) * 0.24) * 0.1) * 0.9856}},
    };
    for (const auto& row : cases) {
        WaveformState waveform;
        for (const double input : row.inputs) {
            waveform.push(input);
        }
        expectFrame(waveform.frame().get(), row.frame, row.name);
    }
}

TEST(WaveformStateTest, ASteadyVoiceStaysActiveAndStopsPulsing) {
    WaveformState waveform;
    for (int push = 0; push < 40; ++push) {
        waveform.push(0.5);
    }
    const auto& frame = waveform.frame().get();
    EXPECT_NEAR(frame.voiceActivity, 1, 1e-6);
    EXPECT_EQ(frame.speechPulse, 0);
}

TEST(WaveformStateTest, ALongSilenceEndsInExactZerosAndAPhaseThatStandsStill) {
    WaveformState waveform;
    waveform.push(1);
    for (int push = 0; push < 60; ++push) {
        waveform.push(0);
    }
    const auto settled = waveform.frame().get();
    EXPECT_EQ(settled, (WaveformState::Frame{0, 0, 0, 0, settled.motionPhase}));
    EXPECT_GT(settled.motionPhase, 0);
    waveform.push(0);
    EXPECT_EQ(waveform.frame().get(), settled);
}

TEST(WaveformStateTest, ThePhaseWrapsAround) {
    WaveformState waveform;
    bool cameRound = false;
    double previous = 0;
    for (int push = 0; push < 1000; ++push) {
        waveform.push(push % 3 == 0 ? 0.1 : 1.0);
        const double phase = waveform.frame().get().motionPhase;
        ASSERT_LT(phase, 8 * std::numbers::pi + 0.252 + exact);
        cameRound |= phase < previous;
        previous = phase;
    }
    EXPECT_TRUE(cameRound);
}

TEST(WaveformStateTest, APushIsAnnouncedOnceBeforeItIsStored) {
    WaveformState waveform;
    std::vector<double> before;
    const Subscription subscription =
        waveform.onChange([&] { before.push_back(waveform.frame().get().level); });
    waveform.push(1);
    waveform.reset();
    EXPECT_EQ(before, (std::vector<double>{0, 0.96}));
    EXPECT_EQ(waveform.frame().get(), WaveformState::Frame{});
}

} // namespace
} // namespace orlune
