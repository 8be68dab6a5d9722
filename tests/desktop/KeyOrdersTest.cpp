// The shortcut monitor under random sequences of keys on a real X server, compared with a model of
// their meaning for a dictation. A sequence is a function of its seed; a failure prints both and
// the last steps. Longer runs: ORLUNE_KEY_STEPS=100000 ORLUNE_KEY_SEED=7.
#include "dictation/FnPushToTalkMonitor.h"
#include "platform/linux/keys/DesktopKeyEvents.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/OtherClient.h"
#include "tests/support/DictationHarness.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <deque>
#include <map>
#include <optional>
#include <random>
#include <set>

namespace orlune {
namespace {

using namespace std::chrono_literals;
using desktop::Keyboard;
using Modifiers = DictationShortcut::Modifiers;
namespace keycode = desktop::keycode;

constexpr int defaultSteps = 10'000;

const std::map<Keyboard::Keycode, Modifiers> modifierKeys{{keycode::fn, Modifiers::function},
                                                          {keycode::control, Modifiers::control},
                                                          {keycode::shift, Modifiers::shift},
                                                          {keycode::alt, Modifiers::option},
                                                          {keycode::super, Modifiers::command}};
const std::map<Keyboard::Keycode, std::uint16_t> otherKeys{
    {keycode::space, 49}, {keycode::a, 0}, {keycode::escape, 53}};
const std::vector<Keyboard::Keycode> allKeys{keycode::fn,    keycode::fn,     keycode::control,
                                             keycode::shift, keycode::alt,    keycode::super,
                                             keycode::space, keycode::escape, keycode::a};
/// Only pressed while a shortcut is recorded.
constexpr auto recordedKey = keycode::k;

const std::vector<DictationShortcut> shortcuts{
    {},
    {std::nullopt, {Modifiers::control, Modifiers::option}},
    {49, {Modifiers::control}},
    {0, {}}};

/// A plain description of the dictation and the shortcut.
class Model {
  public:
    std::string phase = "idle";
    DictationShortcut shortcut;
    bool isHoldToSpeak = false;
    bool isLocked = false;

    void press(Keyboard::Keycode key) {
        if (isLocked) {
            return;
        }
        const bool isRepeat = !held_.insert(key).second;
        if (modifierKeys.contains(key)) {
            if (!isRepeat) {
                modifiersChanged();
            }
            return;
        }
        const auto code = otherKeys.at(key);
        if (code == 53) {
            cancel();
        } else if (!isRepeat && shortcut.keyCode == code && modifiers() == shortcut.modifiers) {
            hold(true);
        }
    }

    void release(Keyboard::Keycode key) {
        if (isLocked || held_.erase(key) == 0) {
            return;
        }
        if (modifierKeys.contains(key)) {
            modifiersChanged();
        } else if (shortcut.keyCode == otherKeys.at(key)) {
            hold(false); // whatever happened to its modifiers
        }
    }

    void lock() {
        while (!held_.empty()) {
            release(*held_.begin());
        }
        isLocked = true;
        cancel();
    }

    void record(const DictationShortcut& chosen) {
        isShortcutHeld_ = false;
        shortcut = chosen;
    }

    void answer() {
        if (phase == "processing") {
            phase = "reviewing";
        }
    }

    void wait() {
        if (phase == "processing" || phase == "failure" || phase == "success") {
            phase = "idle";
        }
    }

  private:
    Modifiers modifiers() const {
        Modifiers now;
        for (const auto key : held_) {
            if (const auto found = modifierKeys.find(key); found != modifierKeys.end()) {
                now = now.united(found->second);
            }
        }
        return now;
    }

    void modifiersChanged() {
        if (!shortcut.keyCode) {
            hold(modifiers().contains(shortcut.modifiers));
        }
    }

    void hold(bool isHeld) {
        if (std::exchange(isShortcutHeld_, isHeld) == isHeld) {
            return;
        }
        const bool isUnderWay = phase == "listening" || phase == "processing";
        if (isHeld && phase == "reviewing") {
            phase = "success";
        } else if (isHeld && !isUnderWay) {
            phase = "listening";
        } else if (phase == "listening" && isHeld != isHoldToSpeak) {
            phase = "processing";
        }
    }

    void cancel() {
        if (phase == "listening" || phase == "processing" || phase == "reviewing") {
            phase = "failure";
        }
    }

    std::set<Keyboard::Keycode> held_;
    bool isShortcutHeld_ = false;
};

unsigned long setting(const char* name, unsigned long otherwise) {
    const char* text = std::getenv(name);
    return text ? std::strtoul(text, nullptr, 10) : otherwise;
}

/// The real monitor with the real keyboard; its dictations are in memory.
class Walk {
  public:
    explicit Walk(unsigned long seed) : random_(seed) {
        EXPECT_EQ(keyEvents_.reasonForUnavailability(), "");
        monitor_->start();
    }
    ~Walk() { grabbing_.reset(); }

    std::string phase() {
        const auto text = harness_.phase();
        return text.substr(0, text.find(' '));
    }
    const Model& model() const { return model_; }

    std::string story() const {
        std::string text;
        for (const auto& step : last_) {
            text += "  " + step + "\n";
        }
        return text;
    }

    void step() {
        struct Choice {
            unsigned weight;
            void (Walk::*act)();
        };
        static const std::vector<Choice> choices{
            {600, &Walk::moveKey},       {60, &Walk::typeAsAnotherProgram},
            {100, &Walk::pressShortcut}, {80, &Walk::answer},
            {60, &Walk::wait},           {25, &Walk::switchMode},
            {15, &Walk::record},         {25, &Walk::toggleLock},
            {20, &Walk::toggleGrab},     {5, &Walk::switchLayout},
            {30, &Walk::turnLoop}};
        static std::discrete_distribution<std::size_t> which = [] {
            std::vector<unsigned> weights;
            std::ranges::transform(choices, std::back_inserter(weights), &Choice::weight);
            return std::discrete_distribution<std::size_t>(weights.begin(), weights.end());
        }();
        (this->*choices[which(random_)].act)();
        settle();
    }

    /// Releases every key.
    void rest() {
        while (!pressed_.empty()) {
            release(*pressed_.begin());
            settle();
        }
    }

  private:
    template <typename Range>
    auto& any(Range& range) {
        return *std::next(range.begin(), static_cast<std::ptrdiff_t>(random_() % std::size(range)));
    }
    void note(std::string text) {
        last_.push_back(std::move(text));
        if (last_.size() > 25) {
            last_.pop_front();
        }
    }
    /// Waits until everything that the server has processed is handled.
    void settle() {
        keyEvents_.willPost();
        keyEvents_.didPost();
        harness_.platform.runUntilIdle();
    }

    void press(Keyboard::Keycode key) {
        note("press " + std::to_string(key));
        pressed_.insert(key);
        keyboard_.press(key);
        model_.press(key);
    }
    void release(Keyboard::Keycode key) {
        note("release " + std::to_string(key));
        pressed_.erase(key);
        keyboard_.release(key);
        model_.release(key);
    }
    /// Only a few keys stay down for long.
    void moveKey() {
        const auto key = any(allKeys);
        if (pressed_.contains(key)) {
            release(key);
        } else if (pressed_.size() < 4) {
            press(key);
        } else {
            release(any(pressed_));
        }
    }
    /// Presses exactly the keys of the shortcut, in any order, like a user who dictates.
    void pressShortcut() {
        rest();
        std::vector<Keyboard::Keycode> keys;
        for (const auto& [key, modifier] : modifierKeys) {
            if (model_.shortcut.modifiers.contains(modifier)) {
                keys.push_back(key);
            }
        }
        for (const auto& [key, code] : otherKeys) {
            if (model_.shortcut.keyCode == code) {
                keys.push_back(key);
            }
        }
        if (random_() % 4 == 0) {
            std::ranges::shuffle(keys, random_);
        }
        for (const auto key : keys) {
            press(key);
            settle();
        }
    }
    /// When a program presses a key that a keyboard already holds, this counts as a repeat, and its
    /// release as a release.
    void typeAsAnotherProgram() {
        const auto key = pressed_.empty() || random_() % 3 == 0 ? any(allKeys) : any(pressed_);
        note("another program types " + std::to_string(key));
        for (const bool isDown : {true, false}) {
            program_.type(key, isDown);
            isDown ? model_.press(key) : model_.release(key);
            settle();
        }
    }
    void answer() {
        if (model_.phase == "processing") {
            note("the service answers");
            harness_.result("rename the button", /*isFinal=*/true);
            harness_.metadata();
            harness_.platform.advance(20ms);
            model_.answer();
        }
    }
    void wait() {
        note("time passes");
        harness_.platform.advance(5s);
        model_.wait();
    }
    void switchMode() {
        note("the mode changes");
        model_.isHoldToSpeak = !model_.isHoldToSpeak;
        harness_.state().setActivationMode(model_.isHoldToSpeak ? ActivationMode::holdToSpeak
                                                                : ActivationMode::tapToToggle);
    }
    void record() {
        if (model_.isLocked) {
            return;
        }
        note("another shortcut is recorded");
        harness_.state().setCapturingShortcut(true);
        keyboard_.tap({recordedKey});
        settle();
        model_.record(any(shortcuts));
        harness_.state().setShortcut(model_.shortcut);
        harness_.state().setCapturingShortcut(false);
    }
    void toggleLock() {
        note(model_.isLocked ? "the screen is unlocked" : "the screen is locked");
        if (model_.isLocked) {
            model_.isLocked = false;
            keyEvents_.setLocked(false);
        } else {
            keyEvents_.setLocked(true);
            harness_.platform.runUntilIdle();
            harness_.state().cancelDictation();
            model_.lock();
        }
    }
    void toggleGrab() {
        note(grabbing_ ? "the grab ends" : "another program grabs the keyboard");
        if (grabbing_) {
            grabbing_.reset();
        } else if (!grabbing_.emplace().grabKeyboard()) {
            note("the window manager has it: it knows some of these keys");
            grabbing_.reset();
        }
    }
    /// The modifiers have the same positions in all of these layouts.
    void switchLayout() {
        static const std::vector<std::vector<std::string>> layouts{
            {"us"}, {"de"}, {"fr"}, {"us,ru"}, {"gb", "dvorak"}};
        const auto& layout = any(layouts);
        note("the layout is " + layout.front());
        keyboard_.useLayout(layout, layout.front() == "us,ru" ? 1 : 0);
    }
    /// From time to time, so that the timers look at held keys and at a changed layout.
    void turnLoop() {
        note("the loop turns");
        QCoreApplication::processEvents();
    }

    std::mt19937_64 random_;
    DictationHarness harness_;
    Keyboard keyboard_;
    desktop::OtherClient program_;
    std::optional<desktop::OtherClient> grabbing_;
    DesktopKeyEvents keyEvents_{
        {.functionKeyName = "Control_R", .ownWindowHasKeyboard = [] { return false; }},
        harness_.platform.log};
    std::shared_ptr<FnPushToTalkMonitor> monitor_ = FnPushToTalkMonitor::make(
        harness_.state().shared_from_this(), keyEvents_, harness_.platform.queue);
    std::set<Keyboard::Keycode> pressed_;
    Model model_;
    std::deque<std::string> last_;
};

TEST(KeyOrders, MeanTheSameForADictationAsInTheModel) {
    const auto seed = setting("ORLUNE_KEY_SEED", 1);
    const auto steps = setting("ORLUNE_KEY_STEPS", defaultSteps);
    Walk walk(seed);
    std::map<std::string, int> visits;
    for (unsigned long index = 0; index < steps; ++index) {
        walk.step();
        ASSERT_EQ(walk.phase(), walk.model().phase)
            << "seed " << seed << ", step " << index << ":\n"
            << walk.story();
        ++visits[walk.phase()];
    }
    walk.rest();
    EXPECT_EQ(walk.phase(), walk.model().phase) << walk.story();
    for (const auto* phase :
         {"idle", "listening", "processing", "reviewing", "success", "failure"}) {
        EXPECT_GT(visits[phase], 0) << phase << " was never reached";
    }
}

} // namespace
} // namespace orlune
