#include "platform/linux/paste/InjectedPaste.h"

#include "platform/VirtualKey.h"

#include <algorithm>
#include <utility>

namespace orlune {

namespace {

using KeyCode = KeyInjector::KeyCode;

constexpr KeyCode leftControl = 29;
constexpr KeyCode leftShift = 42;
constexpr KeyCode v = 47;
constexpr KeyCode insert = 110;

constexpr std::chrono::milliseconds heldKeysInterval{10};

} // namespace

InjectedPaste::InjectedPaste(KeyInjector& injector, Surroundings surroundings)
    : injector_(injector), surroundings_(std::move(surroundings)),
      keys_(surroundings_.chord == Chord::controlV ? std::vector{leftControl, v}
                                                   : std::vector{leftShift, insert}) {}

InjectedPaste::~InjectedPaste() {
    if (step_ == Step::down) {
        releaseChord();
    }
}

void InjectedPaste::prepare() {
    rests_ = false;
    injector_.prepare();
}

void InjectedPaste::rest() {
    if (step_ == Step::idle) {
        injector_.rest();
    } else {
        rests_ = true;
    }
}

std::optional<EventSource> InjectedPaste::createSource(EventSourceState state) {
    return injector_.isReady() ? std::optional(EventSource{.state = state}) : std::nullopt;
}

std::optional<KeyboardEvent> InjectedPaste::createKeyboardEvent(const EventSource& /*source*/,
                                                                std::uint16_t virtualKey,
                                                                bool isKeyDown) {
    if (virtualKey != virtual_key::v) {
        return std::nullopt;
    }
    return KeyboardEvent{
        .virtualKey = virtualKey, .isKeyDown = isKeyDown, .flags = ModifierFlags::none};
}

bool InjectedPaste::post(EventTapLocation /*location*/, const KeyboardEvent& event) {
    if (!event.isKeyDown) {
        return step_ != Step::idle;
    }
    if (step_ != Step::idle || !injector_.isReady()) {
        return false;
    }
    if (surroundings_.chord == Chord::shiftInsert && !surroundings_.ownPrimarySelection()) {
        return false;
    }
    waitingSince_ = std::chrono::steady_clock::now();
    if (!mustWait()) {
        pressChord();
        return step_ == Step::down;
    }
    step_ = Step::waitingForKeys;
    wakeAfter(heldKeysInterval);
    return true;
}

void InjectedPaste::timerEvent(QTimerEvent* /*event*/) {
    if (step_ == Step::down) {
        releaseChord();
        return;
    }
    if (!mustWait()) {
        pressChord();
    }
}

bool InjectedPaste::mustWait() const {
    const auto waited = std::chrono::steady_clock::now() - waitingSince_;
    switch (surroundings_.heldKeys()) {
    case HeldKeys::none:
        return false;
    case HeldKeys::some:
        return waited <= heldKeysLimit;
    case HeldKeys::unknown:
        break;
    }
    return waited <= tapDuration;
}

void InjectedPaste::wakeAfter(std::chrono::milliseconds duration) {
    timer_.start(static_cast<int>(duration.count()), Qt::PreciseTimer, this);
}

void InjectedPaste::pressChord() {
    timer_.stop();
    step_ = Step::down;
    if (!std::ranges::all_of(keys_, [this](KeyCode key) { return injector_.press(key); })) {
        releaseChord();
        return;
    }
    wakeAfter(pressDuration);
}

void InjectedPaste::releaseChord() {
    timer_.stop();
    step_ = Step::idle;
    for (auto key = keys_.rbegin(); key != keys_.rend(); ++key) {
        injector_.release(*key);
    }
    if (std::exchange(rests_, false)) {
        injector_.rest();
    }
}

} // namespace orlune
