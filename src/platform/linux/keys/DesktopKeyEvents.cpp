#include "platform/linux/keys/DesktopKeyEvents.h"

#include "platform/VirtualKey.h"
#include "platform/linux/keys/KeyNames.h"
#include "platform/linux/x11/KeyAccess.h"

#include <QTimer>
#include <X11/Xlib.h>

#include <chrono>
#include <utility>

namespace orlune {

namespace {

using namespace std::chrono_literals;

/// A release that no raw event tells (a native Wayland window took the keyboard, the console was
/// switched, the machine slept) is found within two looks. Without a key down nobody looks.
constexpr auto heldKeysInterval = 150ms;

/// A keyboard that is plugged in announces itself many times in a row.
constexpr auto layoutDelay = 200ms;

} // namespace

DesktopKeyEvents::DesktopKeyEvents(Surroundings surroundings, Log& log)
    : surroundings_(std::move(surroundings)), log_(log, "Keys"),
      heldKeysTimer_(std::make_unique<QTimer>()), layoutTimer_(std::make_unique<QTimer>()) {
    heldKeysTimer_->setInterval(heldKeysInterval);
    QObject::connect(heldKeysTimer_.get(), &QTimer::timeout, heldKeysTimer_.get(),
                     [this] { checkHeldKeys(); });
    layoutTimer_->setInterval(layoutDelay);
    layoutTimer_->setSingleShot(true);
    QObject::connect(layoutTimer_.get(), &QTimer::timeout, layoutTimer_.get(),
                     [this] { resolveRoles(); });
    if (surroundings_.source) {
        surroundings_.source->setObserver(
            {.onKey = [this](const KeyEvent& event) { reportFromSource(event); },
             .onChange = surroundings_.onSourceChange});
    }
}

DesktopKeyEvents::~DesktopKeyEvents() {
    if (surroundings_.source) {
        surroundings_.source->setObserver({});
    }
}

KeyEventMonitor DesktopKeyEvents::addGlobalMonitor(KeyEventMask mask, GlobalHandler handler) {
    connect();
    return global_.add(mask, [handler = std::move(handler)](const KeyEvent& event) {
        handler(event);
        return KeyEventAnswer::passOn;
    });
}

KeyEventMonitor DesktopKeyEvents::addLocalMonitor(KeyEventMask mask, LocalHandler handler) {
    connect();
    if (!filter_) {
        filter_ = std::make_unique<LocalKeyFilter>(
            [this](const LocalKeyFilter::Key& key) { return answerFor(key); });
    }
    return local_.add(mask, std::move(handler));
}

void DesktopKeyEvents::watch(const KeyCombination& shortcut) {
    if (surroundings_.source) {
        surroundings_.source->watch(shortcut);
    }
}

void DesktopKeyEvents::watchEscape(bool isWanted) {
    if (surroundings_.source) {
        surroundings_.source->watchEscape(isWanted);
    }
}

bool DesktopKeyEvents::reportsReleases() {
    return !source() || source()->reportsReleases();
}

std::string DesktopKeyEvents::reasonForUnavailability() {
    if (source()) {
        return source()->reasonForUnavailability();
    }
    return connect() ? watch_->reasonForUnavailability() : noDisplayReason;
}

std::string DesktopKeyEvents::functionKeyStandIn() {
    const bool hasStandIn =
        connect() && functionKey_ && !isFunctionKey(surroundings_.functionKeyName);
    return hasStandIn ? keyInWords(surroundings_.functionKeyName) : std::string();
}

ShortcutSource* DesktopKeyEvents::source() const {
    auto* const source = surroundings_.source;
    return source && !source->isMissing() ? source : nullptr;
}

bool DesktopKeyEvents::connect() {
    if (watch_) {
        return true;
    }
    watch_ = RawKeyWatch::open(surroundings_.displayName,
                               {.onKey = [this](const auto& key) { receive(key); },
                                .onLayoutChange =
                                    [this] {
                                        if (!layoutTimer_->isActive()) {
                                            layoutTimer_->start();
                                        }
                                    }});
    if (watch_) {
        resolveRoles();
    }
    return watch_ != nullptr;
}

void DesktopKeyEvents::resolveRoles() {
    const auto layout = watch_->layout();
    if (!layout) {
        return;
    }
    const auto symbol = XStringToKeysym(surroundings_.functionKeyName.c_str());
    const auto found = symbol == NoSymbol ? std::nullopt : layout->keycodeOf(symbol);
    if (found) {
        functionKey_ = found;
    } // else it stays the key it was: this layout may have the symbol nowhere
    if (!functionKey_ && !std::exchange(isFunctionKeyMissing_, true)) {
        log_.error("no key of this keyboard is called \"" + surroundings_.functionKeyName
                   + "\"; nothing stands in for Fn");
    }
    edges_.setRoles(KeyRoles::of(*layout, functionKey_));
}

void DesktopKeyEvents::receive(const RawKeyWatch::Key& key) {
    if (isLocked_) {
        return;
    }
    if (isPosting_ && key.isSynthetic) {
        answers_.erase(key.keycode); // in our own windows it is passed on, like any other text
        return;
    }
    enqueue(key.keycode, key.isDown);
}

void DesktopKeyEvents::enqueue(Keycode keycode, bool isDown) {
    queue_.push_back({.keycode = keycode, .isDown = isDown, .isSynthetic = false});
    if (isTelling_) {
        return;
    }
    isTelling_ = true;
    while (!queue_.empty()) {
        const auto key = queue_.front();
        queue_.pop_front();
        if (const auto event =
                key.isDown ? edges_.press(key.keycode) : edges_.release(key.keycode)) {
            tell({.keycode = key.keycode, .event = *event});
        }
    }
    isTelling_ = false;
    watchHeldKeys();
}

void DesktopKeyEvents::tell(const KeyEdges::Edge& edge) {
    const auto& [keycode, event] = edge;
    if (!surroundings_.ownWindowHasKeyboard()) {
        answers_.erase(keycode);
        if (!source() && watch_->reasonForUnavailability().empty()) {
            global_.offer(event);
        }
        return;
    }
    const auto answer = local_.offer(event);
    if (event.type == KeyEvent::Type::keyDown) {
        auto& answers = answers_[keycode];
        answers.press = answer;
        answers.isPressReceived = answers.isPressReceived && event.isARepeat;
    } else if (event.type == KeyEvent::Type::keyUp) {
        answers_[keycode].release = answer;
    }
}

/// The desktop may take the shortcut's keys from our own windows as well.
void DesktopKeyEvents::reportFromSource(const KeyEvent& event) {
    if (event.keyCode != virtual_key::escape) {
        isSourceKeyHeld_ = event.type == KeyEvent::Type::flagsChanged
                               ? event.modifierFlags != ModifierFlags::none
                               : event.type == KeyEvent::Type::keyDown;
    }
    if (!isLocked_) {
        auto& monitors = surroundings_.ownWindowHasKeyboard() ? local_ : global_;
        monitors.offer(event);
    }
}

void DesktopKeyEvents::watchHeldKeys() {
    if (!edges_.isAnyDown()) {
        heldKeysTimer_->stop();
    } else if (!heldKeysTimer_->isActive()) {
        heldKeysTimer_->start();
    }
}

void DesktopKeyEvents::checkHeldKeys() {
    if (const auto keysDown = watch_->keysDown()) {
        for (const auto& edge : edges_.releaseMissing(*keysDown)) {
            tell(edge);
        }
    }
    watchHeldKeys();
}

/// Raw keys drive the local monitors too: that way each press and release is told once, to one kind
/// of monitor, even when the focus moves in between. The server sends the raw key first, so what
/// the monitors said about it is known when our window is about to receive it.
KeyEventAnswer DesktopKeyEvents::answerFor(const LocalKeyFilter::Key& key) {
    if (!watch_ || isLocked_) {
        return KeyEventAnswer::passOn;
    }
    watch_->catchUp();
    if (!watch_->reasonForUnavailability().empty() && !key.isARepeat
        && edges_.isDown(key.keycode) != key.isDown) {
        enqueue(key.keycode, key.isDown); // our windows' own keys are all there is
    }
    // The server repeats a held key as releases and presses, which the toolkit does not always
    // recognise. While the key is really down, every further one is a repeat.
    const bool isDown = edges_.isDown(key.keycode);
    auto& answers = answers_[key.keycode];
    if (!key.isDown) {
        return isDown ? answers.press : answers.release;
    }
    if (!key.isAnnouncement && std::exchange(answers.isPressReceived, true) && isDown) {
        if (const auto repeat = edges_.press(key.keycode)) {
            answers.press = local_.offer(*repeat);
        }
    }
    return answers.press;
}

void DesktopKeyEvents::willPost() {
    if (watch_) {
        watch_->catchUp(); // what came before was not ours
    }
    isPosting_ = true;
}

void DesktopKeyEvents::didPost() {
    if (watch_) {
        watch_->catchUp();
    }
    isPosting_ = false;
}

void DesktopKeyEvents::countAsReleased(const std::vector<Keycode>& keys) {
    for (const auto key : keys) {
        enqueue(key, /*isDown=*/false);
    }
}

void DesktopKeyEvents::setLocked(bool isLocked) {
    if (isLocked && !isLocked_ && surroundings_.source) {
        surroundings_.source->releaseAll();
    }
    if (isLocked && !isLocked_ && watch_) {
        watch_->catchUp();
        for (const auto& edge : edges_.releaseAll()) {
            tell(edge);
        }
        watchHeldKeys();
    }
    isLocked_ = isLocked;
}

} // namespace orlune
