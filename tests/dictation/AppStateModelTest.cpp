// The state under thousands of random orders of events, compared with a small model of its
// transition table. Each order is a function of its seed; a failure prints the seed and the events.

#include "tests/support/DictationHarness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

namespace orlune {
namespace {

using namespace std::chrono_literals;

constexpr int seedCount = 400;
constexpr int eventsPerSeed = 60;

constexpr auto vocabulary = std::to_array<std::string_view>(
    {"fix the login form", "   ", "", "never do that, keep it", "caf\u00e9", "one", "somehow."});

/// The expected behaviour, including the client's wait for the last results.
struct Model {
    // The world.
    bool hasKey = true;
    bool hasMicrophone = true;
    bool isTrusted = true;
    bool isEnabled = true;
    bool checksIntent = true;

    // The state.
    std::string phase = "idle";
    std::string status = "Press Fn to speak";
    std::string transcript;
    std::string pasted;

    // The connection.
    std::vector<std::string> finals;
    std::string interim;
    bool isReceiving = false;
    bool canSend = false;
    bool hasMetadata = false;

    Clock::Duration now{};
    std::optional<Clock::Duration> hideAt;
    std::optional<Clock::Duration> lookAt; ///< when the finishing client checks next
    Clock::Duration deadline{};
    std::string instruction = "Press fn to speak";

    void fail(const std::string& message) {
        phase = "failure " + message;
        status = message;
        hideAt = now + 2s;
        lookAt.reset();
        isReceiving = false;
    }

    void insert(const std::string& text) {
        if (!isTrusted) {
            fail("Allow Accessibility access, then try again");
            return;
        }
        pasted = transcript = text;
        status = "Inserted";
        phase = "success";
        hideAt = now + 650ms;
    }

    void begin() {
        if (phase.starts_with("reviewing")) {
            confirm();
        } else if (isEnabled && phase != "listening" && phase != "processing") {
            if (!hasKey) {
                fail("Add your Deepgram API key in Settings");
                return;
            }
            hideAt.reset();
            transcript.clear();
            finals.clear();
            interim.clear();
            hasMetadata = false;
            isReceiving = canSend = true;
            if (!hasMicrophone) {
                fail("No microphone is available");
                return;
            }
            phase = "listening";
            status = "Listening";
        }
    }

    void end() {
        if (phase != "listening") {
            return;
        }
        phase = "processing";
        status = "Finishing";
        if (!canSend) {
            fail("the line is cut");
            return;
        }
        deadline = now + 1800ms;
        lookAt = now;
        look();
    }

    void look() {
        if (!hasMetadata && now < deadline) {
            lookAt = now + 20ms;
            return;
        }
        lookAt.reset();
        isReceiving = false;
        const auto text = assembled();
        if (text.empty()) {
            fail("No speech was transcribed");
            return;
        }
        transcript = text;
        if (checksIntent) {
            status = "Check the intent";
            phase = "reviewing " + IntentCheckBuilder::build(text).goal;
        } else {
            insert(text);
        }
    }

    void confirm() {
        if (phase.starts_with("reviewing")) {
            insert(IntentCheckBuilder::build(transcript).formattedInstruction());
        }
    }

    void cancel() {
        if (phase == "listening" || phase == "processing" || phase.starts_with("reviewing")) {
            transcript.clear();
            status = "Cancelled";
            phase = "failure Cancelled";
            hideAt = now + 350ms;
            lookAt.reset();
            isReceiving = false;
        }
    }

    std::string assembled() const {
        std::string text;
        for (const auto& segment : finals) {
            text += (text.empty() ? "" : " ") + segment;
        }
        return interim.empty() ? text : text + (text.empty() ? "" : " ") + interim;
    }

    void result(std::string_view text, bool isFinal) {
        if (!isReceiving || text.find_first_not_of(' ') == std::string_view::npos) {
            return;
        }
        if (isFinal) {
            finals.emplace_back(text);
            interim.clear();
        } else {
            interim = text;
        }
        transcript = assembled();
    }

    void advance(Clock::Duration duration) {
        const auto end = now + duration;
        while (true) {
            const auto next = std::min(hideAt.value_or(end + 1ns), lookAt.value_or(end + 1ns));
            if (next > end) {
                break;
            }
            now = next;
            if (lookAt == next) {
                look();
            } else {
                hideAt.reset();
                phase = "idle";
                transcript.clear();
                status = instruction;
            }
        }
        now = end;
    }
};

class RandomOrder {
  public:
    explicit RandomOrder(unsigned seed) : random_(seed) { harness_.state(); }

    void step() {
        switch (pick(17)) {
        case 0:
        case 1:
        case 2:
            note("begin");
            harness_.begin();
            model_.begin();
            break;
        case 3:
        case 4:
            note("end");
            harness_.end();
            model_.end();
            break;
        case 5:
            note("confirm");
            harness_.confirm();
            model_.confirm();
            break;
        case 6:
            note("cancel");
            harness_.cancel();
            model_.cancel();
            break;
        case 7:
        case 8:
        case 9:
            result();
            break;
        case 10:
            if (harness_.platform.webSockets.task()) {
                note("metadata");
                harness_.metadata();
                model_.hasMetadata = model_.hasMetadata || model_.isReceiving;
            }
            break;
        case 11:
            cutTheLine();
            break;
        case 12:
            changeTheWorld();
            break;
        case 13:
            note("hear");
            harness_.hear();
            break;
        case 14:
            supersede();
            break;
        default:
            advance();
            break;
        }
    }

    void check() {
        ASSERT_EQ(harness_.phase(), model_.phase) << story_;
        ASSERT_EQ(harness_.status(), model_.status) << story_;
        ASSERT_EQ(harness_.transcript(), model_.transcript) << story_;
        ASSERT_EQ(harness_.platform.pasteboard.contents().value_or(""), model_.pasted) << story_;
        ASSERT_EQ(harness_.platform.audioEngine.isRunning(), model_.phase == "listening") << story_;
        const auto sockets = harness_.platform.webSockets.tasks();
        const auto open = std::ranges::count_if(
            sockets, [](const auto& socket) { return socket->closeCodes().empty(); });
        const bool needsOne = model_.phase == "listening" || model_.phase == "processing";
        ASSERT_EQ(open, needsOne ? 1 : 0) << story_;
    }

  private:
    unsigned pick(unsigned count) { return static_cast<unsigned>(random_() % count); }
    void note(const std::string& what) { story_ += what + "; "; }

    void result() {
        if (!harness_.platform.webSockets.task()) {
            return;
        }
        const auto text = vocabulary[pick(vocabulary.size())];
        const bool isFinal = pick(2) == 0;
        note((isFinal ? "final '" : "interim '") + std::string(text) + "'");
        harness_.result(text, isFinal);
        model_.result(text, isFinal);
    }

    /// Ends, cancels and begins within one turn. Nothing of the first dictation, neither its
    /// packets nor its close message, may reach the connection of the second.
    void supersede() {
        if (model_.phase != "listening") {
            return;
        }
        const bool isHeld = pick(2) == 0;
        note(isHeld ? "supersede behind a slow line" : "supersede");
        const auto old = harness_.platform.webSockets.task();
        if (isHeld) {
            old->holdSending();
        }
        harness_.hear();
        harness_.hear();
        harness_.state().endDictation();
        if (pick(2) == 0) {
            harness_.platform.runUntilIdle(); // while held, the first waits for its packets here
            if (!isHeld || !model_.canSend) {
                model_.end();
            }
        }
        harness_.state().cancelDictation();
        harness_.state().beginDictation();
        old->releaseSending();
        harness_.platform.runUntilIdle();
        model_.cancel();
        model_.begin();
        const auto current = harness_.platform.webSockets.task();
        if (current != old) {
            ASSERT_TRUE(current->sent().empty()) << story_;
        }
    }

    void cutTheLine() {
        if (model_.phase != "listening") {
            return;
        }
        note("the line is cut");
        harness_.socket().failReceiving("the line is cut");
        harness_.socket().failSending("the line is cut");
        harness_.platform.runUntilIdle();
        model_.isReceiving = model_.canSend = false;
    }

    void changeTheWorld() {
        switch (pick(6)) {
        case 0:
            model_.hasKey = !model_.hasKey;
            note(model_.hasKey ? "a key" : "no key");
            harness_.storeKey(model_.hasKey ? "secret" : "");
            break;
        case 1:
            model_.hasMicrophone = !model_.hasMicrophone;
            note(model_.hasMicrophone ? "a microphone" : "no microphone");
            harness_.platform.audioEngine.format.channelCount = model_.hasMicrophone ? 1 : 0;
            break;
        case 2:
            model_.isTrusted = !model_.isTrusted;
            note(model_.isTrusted ? "trusted" : "not trusted");
            harness_.platform.accessibility.reason = model_.isTrusted ? "" : "no XTEST";
            break;
        case 3:
            model_.isEnabled = !model_.isEnabled;
            note(model_.isEnabled ? "enabled" : "disabled");
            harness_.state().setEnabled(model_.isEnabled);
            break;
        case 4: {
            const bool holds = pick(2) == 0;
            note(holds ? "hold" : "toggle");
            harness_.state().setActivationMode(holds ? ActivationMode::holdToSpeak
                                                     : ActivationMode::tapToToggle);
            model_.instruction = holds ? "Hold fn to speak" : "Press fn to speak";
            if (model_.phase == "idle") {
                model_.status = model_.instruction;
            }
            break;
        }
        default:
            model_.checksIntent = !model_.checksIntent;
            note(model_.checksIntent ? "check" : "no check");
            harness_.state().setIntentCheckEnabled(model_.checksIntent);
            break;
        }
    }

    void advance() {
        constexpr auto durations =
            std::to_array<Clock::Duration>({1ms, 20ms, 33ms, 350ms, 650ms, 1799ms, 1800ms, 2s, 5s});
        const auto duration = durations[pick(durations.size())];
        note("+" + std::to_string(duration / 1ms) + " ms");
        harness_.platform.advance(duration);
        model_.advance(duration);
    }

    std::mt19937 random_;
    DictationHarness harness_;
    Model model_;
    std::string story_;
};

TEST(AppStateModelTest, anyOrderOfEventsFollowsTheTable) {
    for (unsigned seed = 0; seed < seedCount; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomOrder order(seed);
        for (int event = 0; event < eventsPerSeed; ++event) {
            order.step();
            order.check();
            if (HasFatalFailure()) {
                return;
            }
        }
    }
}

} // namespace
} // namespace orlune
