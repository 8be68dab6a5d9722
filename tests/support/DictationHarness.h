// The session controller on a platform in memory; the test plays the service and the user.
#pragma once

#include "dictation/AppState.h"
#include "platform/memory/MemoryPlatform.h"

#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace orlune {

inline std::string describe(const AppState::Phase& phase) {
    using Case = AppState::Phase::Case;
    switch (phase.kind()) {
    case Case::idle:
        return "idle";
    case Case::listening:
        return "listening";
    case Case::processing:
        return "processing";
    case Case::reviewing:
        return "reviewing " + phase.intentCheck()->goal;
    case Case::success:
        return "success";
    case Case::failure:
        return "failure " + *phase.message();
    }
    return "no phase";
}

class DictationHarness {
  public:
    explicit DictationHarness(std::string_view key = "secret") {
        if (!key.empty()) {
            storeKey(key);
        }
    }

    void storeKey(std::string_view key) {
        platform.secretItems.items.clear();
        EXPECT_TRUE(platform.secretItems
                        .add(KeychainStore::query(SecretKey::deepgramAPIKey), key,
                             SecretAccessibility::afterFirstUnlockThisDeviceOnly)
                        .isSuccess());
    }

    /// Created on first use, so that a test can set the platform up before.
    AppState& state() {
        if (!state_) {
            state_ = AppState::make(platform.bundle());
        }
        return *state_;
    }

    /// Adds every announcement to the platform's events, with the new value, not the stored one.
    void record() {
        auto& events = *platform.events;
        recording_[0] = state().phase().subscribe(
            [&](const auto& phase) { events.push_back("phase " + describe(phase)); });
        recording_[1] = state().statusMessage().subscribe(
            [&](const auto& text) { events.push_back("status " + text); });
        recording_[2] = state().interimTranscript().subscribe(
            [&](const auto& text) { events.push_back("transcript " + text); });
    }

    void begin() {
        state().beginDictation();
        platform.runUntilIdle();
    }
    void end() {
        state().endDictation();
        platform.runUntilIdle();
    }
    void confirm() {
        state().confirmIntent();
        platform.runUntilIdle();
    }
    void cancel() {
        state().cancelDictation();
        platform.runUntilIdle();
    }
    /// One buffer of audio.
    void hear(float amplitude = 0.5F) {
        platform.audioEngine.deliver(amplitude);
        platform.runUntilIdle();
    }

    MemoryWebSocketTask& socket() { return *platform.webSockets.task(); }

    void result(std::string_view text, bool isFinal) {
        boost::json::value message = {
            {"type", "Results"},
            {"is_final", isFinal},
            {"channel", {{"alternatives", {{{"transcript", text}}}}}},
        };
        socket().deliverText(boost::json::serialize(message));
        platform.runUntilIdle();
    }
    void metadata() {
        socket().deliverText(R"({"type":"Metadata"})");
        platform.runUntilIdle();
    }

    /// Speaks, ends and lets the service answer with one final result.
    void dictate(std::string_view text) {
        begin();
        end();
        result(text, /*isFinal=*/true);
        metadata();
        platform.advance(std::chrono::milliseconds(20)); // the client checks every 20 ms
    }

    std::string phase() { return describe(state().phase().get()); }
    std::string status() { return state().statusMessage().get(); }
    std::string transcript() { return state().interimTranscript().get(); }

    std::vector<std::string> takeEvents() { return std::exchange(*platform.events, {}); }

    MemoryPlatform platform;

  private:
    std::shared_ptr<AppState> state_;
    Subscription recording_[3];
};

} // namespace orlune
