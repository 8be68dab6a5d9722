#include "dictation/AppState.h"

#include "tests/support/DictationHarness.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace orlune {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

UserDefaults::Data dataOf(std::string_view text) {
    const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
    return {bytes, bytes + text.size()};
}

TEST(AppStateSettingsTest, loadsWhatIsStoredAndFallsBackWhereItIsUnusable) {
    struct Row {
        const char* name;
        const char* key;
        UserDefaults::Value stored;
        std::function<std::string(AppState&)> read;
        const char* expected;
    };
    const auto mode = [](AppState& state) {
        return std::string(rawValue(state.activationMode().get()));
    };
    const auto shortcut = [](AppState& state) { return state.shortcut().get().displayName(); };
    const auto check = [](AppState& state) {
        return std::string(state.intentCheckEnabled().get() ? "on" : "off");
    };
    const auto status = [](AppState& state) { return state.statusMessage().get(); };
    const Row rows[] = {
        {"hold", "activationMode", "holdToSpeak", mode, "holdToSpeak"},
        {"hold tells so", "activationMode", "holdToSpeak", status, "Hold Fn to speak"},
        {"an unknown mode", "activationMode", "HoldToSpeak", mode, "tapToToggle"},
        {"a mode of another type", "activationMode", true, status, "Press Fn to speak"},
        {"a shortcut", "dictationShortcut", dataOf(R"({"keyCode":40,"modifiers":9})"), shortcut,
         "⇧⌘K"},
        {"a truncated shortcut", "dictationShortcut", dataOf(R"({"keyCode":40,)"), shortcut, "fn"},
        {"a shortcut as text", "dictationShortcut", R"({"modifiers":4})", shortcut, "fn"},
        {"the status names Fn whatever is stored", "dictationShortcut",
         dataOf(R"({"modifiers":4})"), status, "Press Fn to speak"},
        {"no intent check", "intentCheckEnabled", false, check, "off"},
        {"a number for the intent check", "intentCheckEnabled", std::int64_t{0}, check, "on"},
    };
    for (const auto& row : rows) {
        DictationHarness harness;
        harness.platform.userDefaults.values.insert_or_assign(row.key, row.stored);
        EXPECT_EQ(row.read(harness.state()), row.expected) << row.name;
        EXPECT_THAT(harness.platform.userDefaults.log, IsEmpty()) << row.name << ": loading writes";
    }
}

TEST(AppStateSettingsTest, everyAssignmentIsStoredAndOnlyAnIdleStatusFollows) {
    DictationHarness harness;
    auto& state = harness.state();
    state.setActivationMode(ActivationMode::holdToSpeak);
    EXPECT_EQ(harness.status(), "Hold fn to speak");
    state.setShortcut(
        {40, {DictationShortcut::Modifiers::shift, DictationShortcut::Modifiers::command}});
    EXPECT_EQ(harness.status(), "Hold ⇧⌘K to speak");
    state.setIntentCheckEnabled(true);
    state.setIntentCheckEnabled(true);
    EXPECT_THAT(harness.platform.userDefaults.log,
                ElementsAre("set activationMode", "set dictationShortcut", "set intentCheckEnabled",
                            "set intentCheckEnabled"));
    EXPECT_EQ(harness.platform.userDefaults.string("activationMode"), "holdToSpeak");
    EXPECT_EQ(harness.platform.userDefaults.data("dictationShortcut"),
              dataOf(state.shortcut().get().encode()));

    harness.begin();
    state.setActivationMode(ActivationMode::tapToToggle);
    EXPECT_EQ(harness.status(), "Listening");
    harness.cancel();
    harness.platform.advance(350ms);
    EXPECT_EQ(harness.status(), "Press ⇧⌘K to speak");
}

TEST(AppStateSettingsTest, savesATrimmedKeyIgnoresABlankOneAndReportsARefusal) {
    DictationHarness harness("");
    auto& state = harness.state();
    EXPECT_FALSE(state.hasDeepgramAPIKey().get());
    state.saveDeepgramAPIKey(" \n\t ");
    EXPECT_THAT(harness.platform.secretItems.items, IsEmpty());
    harness.platform.secretItems.addStatus = {SecretStatus::Code::refused, "The keyring said no"};
    EXPECT_THROW(state.saveDeepgramAPIKey("abc"), KeychainStore::Error);
    EXPECT_FALSE(state.hasDeepgramAPIKey().get());
    harness.platform.secretItems.addStatus = {};
    state.saveDeepgramAPIKey("  abc\n");
    EXPECT_TRUE(state.hasDeepgramAPIKey().get());
    EXPECT_EQ(harness.platform.secretItems.items.at(0).data, "abc");
    EXPECT_TRUE(AppState::make(harness.platform.bundle())->hasDeepgramAPIKey().get());
    harness.storeKey("");
    EXPECT_FALSE(AppState::make(harness.platform.bundle())->hasDeepgramAPIKey().get());
}

TEST(AppStateSettingsTest, checksAgainWhetherThereIsAKey) {
    DictationHarness harness("");
    auto& state = harness.state();
    std::vector<bool> announced;
    const auto recording =
        state.hasDeepgramAPIKey().subscribe([&](bool hasKey) { announced.push_back(hasKey); });
    const auto check = [&] {
        state.checkDeepgramAPIKey();
        harness.platform.runUntilIdle();
    };
    harness.storeKey("abc");
    check();
    check();
    EXPECT_THAT(announced, ElementsAre(true)) << "only what differs is announced";
    harness.platform.secretItems.copyMatchingStatus = {SecretStatus::Code::timedOut, "Locked"};
    check();
    EXPECT_TRUE(state.hasDeepgramAPIKey().get()) << "nothing was learnt";
    harness.platform.secretItems.copyMatchingStatus = {};
    harness.storeKey("");
    check();
    EXPECT_FALSE(state.hasDeepgramAPIKey().get());

    state.checkDeepgramAPIKey();
    state.saveDeepgramAPIKey("new");
    harness.platform.runUntilIdle();
    EXPECT_TRUE(state.hasDeepgramAPIKey().get()) << "the answer from before came too late";

    state.setHasDeepgramAPIKey(false);
    harness.begin();
    EXPECT_TRUE(state.hasDeepgramAPIKey().get()) << "a dictation has read it";
}

TEST(AppStateTest, aDictationWithReviewHappensInExactlyThisOrder) {
    DictationHarness harness;
    harness.record();
    harness.begin();
    EXPECT_THAT(harness.takeEvents(),
                ElementsAre("transcript ", "status Connecting securely", "phase processing",
                            "socket 1 resume", "status Listening", "phase listening"));
    EXPECT_THAT(harness.platform.audioEngine.log,
                ElementsAre("installTap 576", "prepare", "start"));
    harness.hear();
    harness.result("fix the form", /*isFinal=*/false);
    harness.result("fix the form", /*isFinal=*/false); // no change, no announcement
    EXPECT_THAT(harness.takeEvents(),
                ElementsAre("socket 1 send binary 384", "transcript fix the form"));
    harness.end();
    EXPECT_THAT(harness.takeEvents(), ElementsAre("phase processing", "status Finishing",
                                                  "socket 1 send text {\"type\":\"CloseStream\"}"));
    harness.result(" fix the form, never break it ", /*isFinal=*/true);
    harness.metadata();
    harness.platform.advance(20ms);
    EXPECT_THAT(harness.takeEvents(),
                ElementsAre("transcript fix the form, never break it", "socket 1 close 1000",
                            "transcript fix the form, never break it", "status Check the intent",
                            "phase reviewing Fix the form."));
    harness.platform.advance(1h); // a review has no time limit
    harness.confirm();
    const std::string text = "Goal\nFix the form.\n\nRequirements\n- Never break it.";
    EXPECT_THAT(harness.takeEvents(),
                ElementsAre("clear", "set " + text, "down 9", "up 9", "transcript " + text,
                            "status Inserted", "phase success"));
    harness.platform.advance(649ms);
    EXPECT_EQ(harness.phase(), "success");
    harness.platform.advance(1ms);
    EXPECT_THAT(harness.takeEvents(),
                ElementsAre("phase idle", "transcript ", "status Press fn to speak"));
}

TEST(AppStateTest, withoutTheIntentCheckTheTranscriptIsPastedAtOnce) {
    DictationHarness harness;
    harness.state().setIntentCheckEnabled(false);
    harness.dictate("Just this.");
    EXPECT_EQ(harness.phase(), "success");
    EXPECT_EQ(harness.platform.pasteboard.contents(), "Just this.");
}

TEST(AppStateTest, theLatencyOfFirstTextAndOfInsertionIsLogged) {
    DictationHarness harness;
    harness.begin();
    harness.platform.advance(1234567us);
    harness.result("one", /*isFinal=*/false);
    harness.result("one two", /*isFinal=*/true);
    harness.end();
    harness.metadata();
    harness.platform.advance(20ms);
    harness.platform.advance(979ms + 900us);
    harness.confirm();
    EXPECT_THAT(
        harness.platform.log.entries(),
        ElementsAre(MemoryLog::Entry{Log::Level::info, "Latency", "time_to_first_text_ms=1234"},
                    MemoryLog::Entry{Log::Level::info, "Latency", "key_release_to_insert_ms=999"}));
}

TEST(AppStateTest, textThatComesBeforeTheCaptureIsNotMeasuredFromTheLastDictation) {
    DictationHarness harness;
    harness.dictate("one");
    harness.confirm();
    const auto measured = harness.platform.log.entries().size();
    harness.platform.audioEngine.format.channelCount = 0; // so this dictation never captures
    harness.state().beginDictation();
    while (harness.platform.webSockets.tasks().size() < 2 && harness.platform.runOne()) {
    }
    harness.result("early", /*isFinal=*/true);
    EXPECT_EQ(harness.transcript(), "early");
    EXPECT_EQ(harness.platform.log.entries().size(), measured);
}

TEST(AppStateTest, everyFailureHasItsTextStaysTwoSecondsAndLeavesNothingRunning) {
    struct Row {
        const char* expected;
        std::function<void(DictationHarness&)> dictate;
    };
    const auto refusesKey = [](DictationHarness& harness) { harness.begin(); };
    const Row rows[] = {
        {"Add your Deepgram API key in Settings",
         [&](DictationHarness& harness) {
             harness.storeKey("");
             refusesKey(harness);
         }},
        {"Add your Deepgram API key in Settings",
         [&](DictationHarness& harness) {
             harness.platform.secretItems.items.clear();
             refusesKey(harness);
         }},
        {"No microphone is available",
         [](DictationHarness& harness) {
             harness.platform.audioEngine.format.channelCount = 0;
             harness.begin();
         }},
        {"The microphone audio format isn't supported",
         [](DictationHarness& harness) {
             harness.platform.audioConverter.refusesFormats = true;
             harness.begin();
         }},
        {"Connection refused",
         [](DictationHarness& harness) {
             harness.platform.audioEngine.startError = "Connection refused";
             harness.begin();
         }},
        {"No speech was transcribed",
         [](DictationHarness& harness) {
             harness.begin();
             harness.end();
             harness.platform.advance(1800ms);
         }},
        {"The connection was reset",
         [](DictationHarness& harness) {
             harness.begin();
             harness.result("half a thought", /*isFinal=*/false);
             harness.socket().failReceiving("The connection was reset");
             harness.socket().failSending("The connection was reset");
             harness.end();
         }},
        {"Allow Accessibility access, then try again",
         [](DictationHarness& harness) {
             harness.platform.accessibility.reason = "no XTEST";
             harness.dictate("some words to paste");
             harness.confirm();
         }},
        {"Couldn't paste into the active application",
         [](DictationHarness& harness) {
             harness.platform.keyEventPosting.refusesSource = true;
             harness.state().setIntentCheckEnabled(false);
             harness.dictate("some words to paste");
         }},
    };
    for (const auto& row : rows) {
        DictationHarness harness;
        row.dictate(harness);
        const std::string failure = std::string("failure ") + row.expected;
        EXPECT_EQ(harness.phase(), failure);
        EXPECT_EQ(harness.status(), row.expected);
        EXPECT_FALSE(harness.platform.audioEngine.isRunning()) << row.expected;
        for (const auto& socket : harness.platform.webSockets.tasks()) {
            EXPECT_FALSE(socket->closeCodes().empty()) << row.expected << ": a connection stays";
        }
        harness.platform.advance(1999ms);
        EXPECT_EQ(harness.phase(), failure);
        harness.platform.advance(1ms);
        EXPECT_EQ(harness.phase(), "idle");
        EXPECT_EQ(harness.transcript(), "");
        const auto wake = harness.platform.clock.nextWake(); // only to forget the words, if any
        EXPECT_TRUE(!wake || *wake > harness.platform.clock.now() + 9min)
            << row.expected << ": somebody still sleeps";
    }
}

TEST(AppStateTest, aFailureKeepsTheTranscriptInViewACancelWipesIt) {
    DictationHarness harness;
    harness.begin();
    harness.result("half a thought", /*isFinal=*/false);
    harness.socket().failSending("gone");
    harness.end();
    EXPECT_EQ(harness.phase(), "failure gone");
    EXPECT_EQ(harness.transcript(), "half a thought");
    harness.begin();
    harness.result("another", /*isFinal=*/false);
    harness.cancel();
    EXPECT_EQ(harness.transcript(), "");
}

TEST(AppStateTest, cancellingEndsEveryRunningPhaseAndPastesNothing) {
    const std::pair<const char*, std::function<void(DictationHarness&)>> rows[] = {
        {"connecting", [](DictationHarness& harness) { harness.state().beginDictation(); }},
        {"listening", [](DictationHarness& harness) { harness.begin(); }},
        {"finishing",
         [](DictationHarness& harness) {
             harness.begin();
             harness.end();
         }},
        {"reviewing", [](DictationHarness& harness) { harness.dictate("fix the form now"); }},
    };
    for (const auto& [name, reach] : rows) {
        DictationHarness harness;
        reach(harness);
        harness.record();
        harness.takeEvents();
        harness.state().cancelDictation();
        EXPECT_THAT(harness.takeEvents(),
                    ElementsAre("transcript ", "status Cancelled", "phase failure Cancelled"))
            << name;
        EXPECT_FALSE(harness.platform.audioEngine.isRunning()) << name;
        harness.platform.runUntilIdle();
        if (const auto socket = harness.platform.webSockets.task()) {
            EXPECT_FALSE(socket->closeCodes().empty()) << name;
            harness.result("too late", /*isFinal=*/true);
        }
        harness.platform.advance(349ms);
        EXPECT_EQ(harness.phase(), "failure Cancelled") << name;
        harness.platform.advance(1ms);
        EXPECT_EQ(harness.phase(), "idle") << name;
        harness.platform.advance(5s);
        EXPECT_EQ(harness.platform.pasteboard.contents(), std::nullopt) << name;
        harness.cancel();
        EXPECT_EQ(harness.phase(), "idle") << name;
    }
}

TEST(AppStateTest, aCancelWhileConnectingNeverOpensTheMicrophone) {
    DictationHarness harness;
    harness.state().beginDictation();
    harness.state().cancelDictation();
    harness.platform.advance(10s);
    EXPECT_THAT(harness.platform.audioEngine.log, testing::Not(testing::Contains("start")));
    EXPECT_EQ(harness.phase(), "idle");
}

TEST(AppStateTest, requestsThatDoNotFitThePhaseChangeNothing) {
    DictationHarness harness;
    harness.record();
    harness.state().endDictation();
    harness.state().confirmIntent();
    harness.state().cancelDictation();
    harness.state().setEnabled(false);
    harness.begin();
    EXPECT_THAT(harness.takeEvents(), IsEmpty());
    harness.state().setEnabled(true);
    harness.state().beginDictation();
    harness.takeEvents();
    harness.state().endDictation(); // still connecting: the dictation goes on to listen
    harness.state().beginDictation();
    harness.platform.runUntilIdle();
    EXPECT_EQ(harness.phase(), "listening");
    EXPECT_EQ(harness.platform.webSockets.tasks().size(), 1u);
    harness.state().setEnabled(false); // a running dictation can still be ended
    harness.end();
    EXPECT_EQ(harness.status(), "Finishing");
    harness.takeEvents();
    harness.begin();
    EXPECT_THAT(harness.takeEvents(), IsEmpty());
}

TEST(AppStateTest, theShortcutPressedInReviewConfirmsEvenWhileDisabled) {
    DictationHarness harness;
    harness.dictate("fix the login form");
    harness.state().setEnabled(false);
    harness.begin();
    EXPECT_EQ(harness.platform.pasteboard.contents(), "Fix the login form.");
    EXPECT_EQ(harness.phase(), "success");
}

TEST(AppStateTest, aNewDictationIsNotHiddenByTheOneBefore) {
    DictationHarness harness;
    harness.state().setIntentCheckEnabled(false);
    harness.dictate("one");
    // The time of hiding has come, but not its turn: beginning must win.
    harness.platform.clock.advance(650ms);
    harness.begin();
    EXPECT_EQ(harness.phase(), "listening");
    harness.platform.advance(10s);
    EXPECT_EQ(harness.phase(), "listening");
}

TEST(AppStateTest, resultsWhileFinishingAreShownAndThoseOfAnEarlierDictationAreNot) {
    DictationHarness harness;
    harness.begin();
    const auto first = harness.platform.webSockets.task();
    first->deliverText(R"({"type":"Results","channel":{"alternatives":[{"transcript":"old"}]}})");
    harness.state().cancelDictation(); // the result is on its way to the main actor
    harness.begin();
    EXPECT_EQ(harness.transcript(), "");
    harness.end();
    harness.result("new", /*isFinal=*/false);
    EXPECT_EQ(harness.transcript(), "new");
}

TEST(AppStateTest, everyPacketIsSentBeforeTheStreamIsClosedHoweverSlowTheConnection) {
    DictationHarness harness;
    harness.begin();
    harness.socket().holdSending();
    for (int buffer = 0; buffer < 50; ++buffer) {
        harness.hear();
    }
    harness.end();
    harness.platform.advance(3s);
    EXPECT_EQ(harness.status(), "Finishing");
    harness.socket().releaseSending();
    harness.platform.runUntilIdle();
    const auto sent = harness.socket().sent();
    ASSERT_EQ(sent.size(), 51u);
    EXPECT_EQ(sent.back().bytes, R"({"type":"CloseStream"})");
}

TEST(AppStateTest, levelsMoveTheWaveformOnlyWhileListening) {
    DictationHarness harness;
    harness.begin();
    harness.hear();
    EXPECT_GT(harness.state().waveform().frame().get().level, 0.5);
    harness.platform.audioEngine.deliver(0.5F); // in transit when the recording ends
    const auto before = harness.state().waveform().frame().get();
    harness.end();
    EXPECT_EQ(harness.state().waveform().frame().get(), before);
    harness.cancel();
    harness.platform.advance(350ms);
    EXPECT_EQ(harness.state().waveform().frame().get(), WaveformState::Frame{});
}

} // namespace
} // namespace orlune
