#include "dictation/AppState.h"

#include "core/Text.h"
#include "services/DeepgramService.h"

#include <boost/asio/post.hpp>
#include <boost/uuid/random_generator.hpp>

#include <cassert>
#include <chrono>
#include <cmath>
#include <utility>
#include <vector>

namespace orlune {

namespace {

using namespace std::chrono_literals;
using Case = AppState::Phase::Case;

/// Sent to the transcription service and required of the capture, in hertz.
constexpr int transcriptionSampleRate = 16000;

// How long each outcome stays on screen: a failure must be read, a cancel need not.
constexpr auto hideAfterCancel = 350ms;
constexpr auto hideAfterSuccess = 650ms;
constexpr auto hideAfterFailure = 2s;

constexpr auto activationModeKey = "activationMode";
constexpr auto shortcutKey = "dictationShortcut";
constexpr auto intentCheckKey = "intentCheckEnabled";

ActivationMode storedActivationMode(const UserDefaults& defaults) {
    const auto stored = defaults.string(activationModeKey);
    return activationModeFromRawValue(stored.value_or("")).value_or(ActivationMode::tapToToggle);
}

DictationShortcut storedShortcut(const UserDefaults& defaults) {
    const auto stored = defaults.data(shortcutKey);
    if (!stored) {
        return {};
    }
    const std::string_view json(reinterpret_cast<const char*>(stored->data()), stored->size());
    return DictationShortcut::decode(json).value_or(DictationShortcut{});
}

UserDefaults::Data dataOf(std::string_view text) {
    const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
    return {bytes, bytes + text.size()};
}

boost::uuids::uuid newSessionID() {
    static boost::uuids::random_generator generate;
    return generate();
}

std::string milliseconds(std::string_view name, Clock::Duration elapsed) {
    const auto whole = std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count();
    return std::string(name) + "=" + std::to_string(whole);
}

const Platform* installedPlatform = nullptr;
std::shared_ptr<AppState> sharedState;

} // namespace

AppState::Phase AppState::Phase::reviewing(IntentCheck check) {
    Phase phase(Case::reviewing);
    phase.payload_ = std::move(check);
    return phase;
}

AppState::Phase AppState::Phase::failure(std::string message) {
    Phase phase(Case::failure);
    phase.payload_ = std::move(message);
    return phase;
}

void AppState::install(const Platform& platform) {
    installedPlatform = &platform;
}

void AppState::uninstall() {
    sharedState.reset();
    installedPlatform = nullptr;
}

const std::shared_ptr<AppState>& AppState::shared() {
    assert(installedPlatform && "the platform is installed before the state is first used");
    if (!sharedState) {
        sharedState = make(*installedPlatform);
    }
    return sharedState;
}

std::shared_ptr<AppState> AppState::make(const Platform& platform) {
    return std::shared_ptr<AppState>(new AppState(platform));
}

AppState::AppState(const Platform& platform)
    : platform_(platform), main_(platform.mainActor.executor()), phase_(*this, Phase::idle()),
      interimTranscript_(*this, {}), statusMessage_(*this, {}), hasDeepgramAPIKey_(*this, false),
      isEnabled_(*this, true),
      intentCheckEnabled_(*this, platform.userDefaults.boolean(intentCheckKey).value_or(true)),
      isCapturingShortcut_(*this, false),
      activationMode_(*this, storedActivationMode(platform.userDefaults)),
      shortcut_(*this, storedShortcut(platform.userDefaults)), keychain_(platform.secretItems),
      audio_(platform.makeAudioEngine, platform.makeAudioConverter),
      deepgram_(std::make_shared<DeepgramService>(platform.webSockets, platform.clock,
                                                  platform.background, platform.speechEndpoint)),
      inserter_(platform.accessibility, platform.pasteboard, platform.keyEventPosting),
      latencyLog_(platform.log, "Latency"), sessionID_(newSessionID()) {
    const auto key = keychain_.string(SecretKey::deepgramAPIKey);
    hasDeepgramAPIKey_.set(key && !key->empty());
    statusMessage_.set(activationMode_.get() == ActivationMode::holdToSpeak ? "Hold Fn to speak"
                                                                            : "Press Fn to speak");
}

AppState::~AppState() {
    // A dictation that is still running ends with the state, without a report to anybody.
    tearDownCapture();
    cancelTranscription();
}

// MARK: Settings

void AppState::setIntentCheckEnabled(bool enabled) {
    intentCheckEnabled_.set(enabled);
    platform_.userDefaults.set(intentCheckKey, enabled);
}

void AppState::setActivationMode(ActivationMode mode) {
    activationMode_.set(mode);
    platform_.userDefaults.set(activationModeKey, std::string(rawValue(mode)));
    updateIdleStatus();
}

void AppState::setShortcut(const DictationShortcut& shortcut) {
    shortcut_.set(shortcut);
    platform_.userDefaults.set(shortcutKey, dataOf(shortcut.encode()));
    updateIdleStatus();
}

void AppState::updateIdleStatus() {
    if (phase_.get().is(Case::idle)) {
        statusMessage_.set(idleInstruction());
    }
}

std::string AppState::idleInstruction() const {
    const auto* verb = activationMode_.get() == ActivationMode::holdToSpeak ? "Hold " : "Press ";
    return verb + shortcut_.get().displayName() + " to speak";
}

void AppState::saveDeepgramAPIKey(std::string_view key) {
    platform_.mainActor.assertCurrent();
    const auto trimmed = trimmedWhitespaceAndNewlines(key);
    if (trimmed.empty()) {
        return;
    }
    keychain_.set(trimmed, SecretKey::deepgramAPIKey);
    setHasDeepgramAPIKey(true);
}

void AppState::setHasDeepgramAPIKey(bool hasKey) {
    ++keyCheck_;
    hasDeepgramAPIKey_.set(hasKey);
}

void AppState::checkDeepgramAPIKey() {
    platform_.mainActor.assertCurrent();
    keychain_.checkPresence(SecretKey::deepgramAPIKey, [weakSelf = weak_from_this(), main = main_,
                                                        check = ++keyCheck_](
                                                           SecretItems::Presence presence) {
        boost::asio::post(main, [weakSelf, check, presence] {
            const auto self = weakSelf.lock();
            if (!self || check != self->keyCheck_ || presence == SecretItems::Presence::unknown) {
                return;
            }
            const bool hasKey = presence == SecretItems::Presence::present;
            if (self->hasDeepgramAPIKey_.get() != hasKey) {
                self->hasDeepgramAPIKey_.set(hasKey);
            }
        });
    });
}

// MARK: Beginning

void AppState::beginDictation() {
    platform_.mainActor.assertCurrent();
    if (phase_.get().is(Case::reviewing)) {
        confirmIntent();
        return;
    }
    if (!isEnabled_.get() || phase_.get().is(Case::listening)
        || phase_.get().is(Case::processing)) {
        return;
    }
    auto key = keychain_.string(SecretKey::deepgramAPIKey);
    if (!key || key->empty()) {
        fail("Add your Deepgram API key in Settings");
        return;
    }
    if (!hasDeepgramAPIKey_.get()) {
        setHasDeepgramAPIKey(true);
    }
    hideTask_.cancel();
    const auto identity = newSessionID();
    sessionID_ = identity;
    interimTranscript_.set({});
    speechStartedAt_.reset();
    stopRequestedAt_.reset();
    recordedFirstText_ = false;
    waveform_.reset();
    statusMessage_.set("Connecting securely");
    phase_.set(Phase::processing());
    Task::start(main_, [self = shared_from_this(), key = std::move(*key), identity]() mutable {
        return self->connect(std::move(key), identity);
    });
}

Awaitable<void> AppState::connect(std::string key, SessionID identity) {
    try {
        // Packets of an earlier dictation must not reach the connection of this one.
        auto drained = lastSendTask_.value();
        co_await std::move(drained);
        if (!isConnecting(identity)) {
            co_return;
        }
        auto onTranscript = [weakSelf = weak_from_this(), identity,
                             main = main_](std::string text) {
            boost::asio::post(main, [weakSelf, identity, text = std::move(text)] {
                if (const auto self = weakSelf.lock()) {
                    self->receiveTranscript(text, identity);
                }
            });
        };
        auto starting =
            deepgram_->start(std::move(key), transcriptionSampleRate, std::move(onTranscript));
        co_await std::move(starting);
        if (isConnecting(identity)) {
            startCapture(identity);
        }
    } catch (const std::exception& error) {
        if (sessionID_ == identity) {
            fail(error.what());
        }
    }
}

bool AppState::isConnecting(SessionID identity) const {
    return sessionID_ == identity && phase_.get().is(Case::processing);
}

void AppState::startCapture(SessionID identity) {
    platform_.mainActor.assertCurrent();
    const auto& packets = audioPacketStream_.emplace();
    audioSendTask_ = Task::start(
        platform_.background, [stream = packets.stream, client = deepgram_]() -> Awaitable<void> {
            while (auto packet = co_await stream.next()) {
                auto sending = client->send(std::move(*packet));
                co_await std::move(sending);
            }
        });
    lastSendTask_ = audioSendTask_;
    const auto format = audio_.prepare(
        [weakSelf = weak_from_this(), main = main_](std::span<const double> levels) {
            boost::asio::post(main, [weakSelf, levels = std::vector(levels.begin(), levels.end())] {
                if (const auto self = weakSelf.lock()) {
                    self->receiveLevels(levels);
                }
            });
        },
        [continuation = packets.continuation](AudioPacket packet) {
            continuation.yield(std::move(packet));
        });
    if (std::trunc(format.sampleRate) != transcriptionSampleRate) {
        throw AudioCaptureService::CaptureError(
            AudioCaptureService::CaptureError::Case::conversionFailed);
    }
    if (!isConnecting(identity)) {
        return;
    }
    speechStartedAt_ = platform_.clock.now();
    audio_.start();
    statusMessage_.set("Listening");
    phase_.set(Phase::listening());
}

void AppState::receiveLevels(std::span<const double> levels) {
    platform_.mainActor.assertCurrent();
    if (phase_.get().is(Case::listening)) {
        waveform_.push(levels);
    }
}

void AppState::receiveTranscript(const std::string& text, SessionID identity) {
    platform_.mainActor.assertCurrent();
    if (sessionID_ != identity) {
        return;
    }
    if (interimTranscript_.get() != text) {
        interimTranscript_.set(text);
    }
    if (!recordedFirstText_ && speechStartedAt_ && !trimmedWhitespaceAndNewlines(text).empty()) {
        recordedFirstText_ = true;
        latencyLog_.info(
            milliseconds("time_to_first_text_ms", platform_.clock.now() - *speechStartedAt_));
    }
}

// MARK: Ending

void AppState::endDictation() {
    platform_.mainActor.assertCurrent();
    if (!phase_.get().is(Case::listening)) {
        return;
    }
    const auto identity = sessionID_;
    stopRequestedAt_ = platform_.clock.now();
    audio_.stop();
    if (audioPacketStream_) {
        audioPacketStream_->continuation.finish();
        audioPacketStream_.reset();
    }
    // Not cancelled: it still has to send the queued packets.
    auto sending = std::exchange(audioSendTask_, {});
    phase_.set(Phase::processing());
    statusMessage_.set("Finishing");
    Task::start(main_, [self = shared_from_this(), sending = std::move(sending), identity] {
        return self->finish(sending, identity);
    });
}

Awaitable<void> AppState::finish(Task sending, SessionID identity) {
    try {
        auto drained = sending.value();
        co_await std::move(drained);
        // The connection may belong to a newer dictation by now.
        if (sessionID_ != identity) {
            co_return;
        }
        auto finishing = deepgram_->finish();
        const std::string transcript = co_await std::move(finishing);
        if (sessionID_ != identity) {
            co_return;
        }
        if (trimmedWhitespaceAndNewlines(transcript).empty()) {
            fail("I didn't catch that");
            co_return;
        }
        interimTranscript_.set(transcript);
        if (intentCheckEnabled_.get()) {
            statusMessage_.set("Check the intent");
            phase_.set(Phase::reviewing(IntentCheckBuilder::build(transcript)));
            co_return;
        }
        insert(transcript);
    } catch (const std::exception& error) {
        if (sessionID_ == identity) {
            fail(error.what());
        }
    }
}

void AppState::confirmIntent() {
    platform_.mainActor.assertCurrent();
    const auto* check = phase_.get().intentCheck();
    if (!check) {
        return;
    }
    try {
        insert(check->formattedInstruction());
    } catch (const std::exception& error) {
        fail(error.what());
    }
}

void AppState::insert(const std::string& text) {
    platform_.mainActor.assertCurrent();
    inserter_.insert(text);
    uninsertedText_.forget();
    expiryTask_.cancel();
    interimTranscript_.set(text);
    statusMessage_.set("Inserted");
    phase_.set(Phase::success());
    if (stopRequestedAt_) {
        latencyLog_.info(
            milliseconds("key_release_to_insert_ms", platform_.clock.now() - *stopRequestedAt_));
    }
    scheduleHide(hideAfterSuccess);
}

void AppState::cancelDictation() {
    platform_.mainActor.assertCurrent();
    const auto phase = phase_.get().kind();
    if (phase != Case::listening && phase != Case::processing && phase != Case::reviewing) {
        return;
    }
    sessionID_ = newSessionID();
    keepUninsertedText();
    tearDownCapture();
    cancelTranscription();
    interimTranscript_.set({});
    statusMessage_.set("Cancelled");
    phase_.set(Phase::failure("Cancelled"));
    scheduleHide(hideAfterCancel);
}

void AppState::fail(const std::string& message) {
    platform_.mainActor.assertCurrent();
    keepUninsertedText();
    tearDownCapture();
    cancelTranscription();
    statusMessage_.set(message);
    phase_.set(Phase::failure(message));
    scheduleHide(hideAfterFailure);
}

/// Keeps what the dictation would have inserted if it had been confirmed now.
void AppState::keepUninsertedText() {
    const auto* check = phase_.get().intentCheck();
    auto text = check ? check->formattedInstruction() : interimTranscript_.get();
    const bool isUnderWay =
        check || phase_.get().is(Case::listening) || phase_.get().is(Case::processing);
    if (!isUnderWay || trimmedWhitespaceAndNewlines(text).empty()) {
        return;
    }
    uninsertedText_.keep(std::move(text), platform_.clock.now());
    expiryTask_.cancel();
    expiryTask_ = Task::start(
        main_, [weakSelf = weak_from_this(), &clock = platform_.clock]() -> Awaitable<void> {
            auto sleeping = clock.sleep(UninsertedText::keptFor);
            co_await std::move(sleeping);
            if (const auto self = weakSelf.lock()) {
                self->uninsertedText_.expire(clock.now());
            }
        });
}

AppState::Recovery AppState::recoverUninsertedText() {
    platform_.mainActor.assertCurrent();
    if (uninsertedText_.text().empty()) {
        return Recovery::nothingToRecover;
    }
    platform_.pasteboard.clearContents();
    return platform_.pasteboard.setString(uninsertedText_.text()) ? Recovery::recovered
                                                                  : Recovery::refused;
}

void AppState::tearDownCapture() {
    audio_.stop();
    if (audioPacketStream_) {
        audioPacketStream_->continuation.finish();
        audioPacketStream_.reset();
    }
    audioSendTask_ = {};
    lastSendTask_.cancel(); // also when it still sends what was said before the end
}

void AppState::cancelTranscription() {
    Task::start(main_, [client = deepgram_]() -> Awaitable<void> { co_await client->cancel(); });
}

void AppState::scheduleHide(Clock::Duration after) {
    hideTask_.cancel();
    hideTask_ = Task::start(main_,
                            [weakSelf = weak_from_this(), &clock = platform_.clock,
                             after](Task self) -> Awaitable<void> {
                                auto sleeping = clock.sleep(after);
                                co_await std::move(sleeping);
                                const auto state = weakSelf.lock();
                                if (!state || self.isCancelled()) {
                                    co_return;
                                }
                                state->phase_.set(Phase::idle());
                                state->interimTranscript_.set({});
                                state->waveform_.reset();
                                state->statusMessage_.set(state->idleInstruction());
                            });
}

} // namespace orlune
