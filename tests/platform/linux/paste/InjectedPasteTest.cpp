// Pasting through an injector: which keys go down and up, when, and what keeps them from it; and
// the order in which the user is asked for it.
#include "platform/linux/paste/InjectedPaste.h"

#include "platform/linux/paste/ConsentAccessibility.h"

#include <QTest>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orlune {
namespace {

using testing::Test;
using HeldKeys = InjectedPaste::HeldKeys;

struct RecordingInjector final : KeyInjector {
    std::string name() const override { return "recording"; }
    void setOnChange(std::function<void()> /*onChange*/) override {}
    void prepare() override { log += "prepare "; }
    void rest() override { log += "rest "; }
    void requestAccess() override { log += "ask "; }
    std::string reasonForUnavailability() const override { return reason; }
    bool isReady() const override { return ready; }
    bool press(KeyCode key) override {
        log += "+" + std::to_string(key) + ' ';
        return key != refused;
    }
    bool release(KeyCode key) override {
        log += "-" + std::to_string(key) + ' ';
        return true;
    }

    bool ready = true;
    KeyCode refused = 0;
    std::string reason;
    std::string log;
};

struct InjectedPasteTest : Test {
    void make(InjectedPaste::Chord chord = InjectedPaste::Chord::shiftInsert) {
        paste = std::make_unique<InjectedPaste>(
            injector,
            InjectedPaste::Surroundings{.chord = chord,
                                        .ownPrimarySelection = [this] { return ownsPrimary; },
                                        .heldKeys = [this] { return held; }});
    }
    bool postCommandV() const {
        const auto source = paste->createSource(EventSourceState::hidSystemState);
        const auto post = [&](bool isDown) {
            auto event = paste->createKeyboardEvent(*source, /*virtualKey=*/9, isDown);
            event->flags = ModifierFlags::command;
            return paste->post(EventTapLocation::hidEventTap, *event);
        };
        return source && post(true) && post(false);
    }
    void expectSoon(const std::string& log) const {
        EXPECT_TRUE(QTest::qWaitFor([&] { return injector.log == log; })) << injector.log;
    }

    bool ownsPrimary = true;
    HeldKeys held = HeldKeys::none;
    RecordingInjector injector;
    std::unique_ptr<InjectedPaste> paste;
};

TEST_F(InjectedPasteTest, theChordGoesDownAtOnceAndComesUpByItself) {
    make();
    paste->prepare();
    EXPECT_TRUE(postCommandV());
    paste->rest(); // the session stays open until the keys are up
    EXPECT_EQ(injector.log, "prepare +42 +110 ");
    expectSoon("prepare +42 +110 -110 -42 rest ");
    make(InjectedPaste::Chord::controlV);
    injector.log.clear();
    ownsPrimary = false; // which this chord does not paste
    EXPECT_TRUE(postCommandV());
    paste.reset();
    EXPECT_EQ(injector.log, "+29 +47 -47 -29 ");
}

TEST_F(InjectedPasteTest, nothingIsPostedThatWouldPasteAnotherText) {
    make();
    injector.ready = false;
    EXPECT_FALSE(paste->createSource(EventSourceState::hidSystemState));
    injector.ready = true;
    ownsPrimary = false;
    EXPECT_FALSE(postCommandV());
    EXPECT_EQ(injector.log, "");
    ownsPrimary = true;
    injector.refused = 110;
    EXPECT_FALSE(postCommandV());
    EXPECT_EQ(injector.log, "+42 +110 -110 -42 "); // no key stays down
}

TEST_F(InjectedPasteTest, theShortcutHasToComeUpFirstWithinABound) {
    make();
    held = HeldKeys::some;
    EXPECT_TRUE(postCommandV());
    EXPECT_FALSE(postCommandV()); // one is under way
    QTest::qWait(30);
    EXPECT_EQ(injector.log, "");
    held = HeldKeys::none;
    expectSoon("+42 +110 -110 -42 ");
    injector.log.clear();
    held = HeldKeys::some;
    EXPECT_TRUE(postCommandV());
    expectSoon("+42 +110 -110 -42 ");
    // Nobody tells when the keys come up.
    injector.log.clear();
    held = HeldKeys::unknown;
    EXPECT_TRUE(postCommandV());
    EXPECT_EQ(injector.log, "");
    expectSoon("+42 +110 -110 -42 ");
}

struct AskedSource final : ShortcutSource {
    explicit AskedSource(std::string& log) : log_(log) {}
    std::string name() const override { return "asked"; }
    void setObserver(Observer /*observer*/) override {}
    void watch(const KeyCombination& /*shortcut*/) override {}
    void watchEscape(bool /*isWanted*/) override {}
    void requestAccess() override { log_ += "ask for the shortcut "; }
    std::string reasonForUnavailability() const override { return reason; }
    bool reportsReleases() const override { return true; }
    void releaseAll() override {}

    std::string reason = "no shortcut";

  private:
    std::string& log_;
};

TEST(ConsentAccessibilityTest, asksOneThingAfterTheOther) {
    RecordingInjector injector;
    injector.reason = "no keys";
    AskedSource source(injector.log);
    ConsentAccessibility accessibility(
        &source, injector, [&](const auto& reason) { injector.log += '(' + reason + ") "; });
    EXPECT_FALSE(accessibility.isProcessTrusted());
    EXPECT_FALSE(accessibility.isProcessTrustedWithOptions(true));
    accessibility.sourceChanged(); // not bound yet
    EXPECT_EQ(injector.log, "(no shortcut) ask for the shortcut ");
    source.reason.clear();
    accessibility.sourceChanged();
    accessibility.sourceChanged();
    EXPECT_EQ(injector.log, "(no shortcut) ask for the shortcut ask ");
    EXPECT_EQ(accessibility.reasonForDistrust(), "no keys");
    injector.reason.clear();
    EXPECT_TRUE(accessibility.isProcessTrustedWithOptions(true));
    EXPECT_EQ(injector.log, "(no shortcut) ask for the shortcut ask ");
}

} // namespace
} // namespace orlune
