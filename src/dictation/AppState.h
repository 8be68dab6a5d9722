// The central state of the program, which every window, the tray and the terminal observe, and the
// controller that runs a dictation from the press of the shortcut to the paste. One exists for the
// life of the process; everything here belongs to the main actor.
// Every failure of a dictation becomes the phase `failure` with a text for the user; none is
// thrown.
#pragma once

#include "core/ActivationMode.h"
#include "core/AudioPacketStream.h"
#include "core/DictationShortcut.h"
#include "core/IntentCheck.h"
#include "core/WaveformState.h"
#include "dictation/UninsertedText.h"
#include "platform/Platform.h"
#include "platform/concurrency/Published.h"
#include "platform/concurrency/Task.h"
#include "services/AudioCaptureService.h"
#include "services/KeychainStore.h"
#include "services/TextInsertionService.h"

#include <boost/uuid/uuid.hpp>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <variant>

namespace orlune {

class DeepgramService;

class AppState : public ObservableObject, public std::enable_shared_from_this<AppState> {
  public:
    /// The phase of a dictation. Compared by case and payload.
    class Phase {
      public:
        enum class Case {
            idle,       ///< nothing in progress
            listening,  ///< capture runs, audio is streamed, text arrives
            processing, ///< connecting before, or finishing after the capture
            reviewing,  ///< the structured prompt waits for confirmation
            success,    ///< the text was pasted
            failure,    ///< the dictation failed or was cancelled
        };

        static Phase idle() { return Phase(Case::idle); }
        static Phase listening() { return Phase(Case::listening); }
        static Phase processing() { return Phase(Case::processing); }
        static Phase reviewing(IntentCheck check);
        static Phase success() { return Phase(Case::success); }
        static Phase failure(std::string message);

        Case kind() const { return kind_; }
        bool is(Case kind) const { return kind_ == kind; }
        /// The check under review; none in any other phase.
        const IntentCheck* intentCheck() const { return std::get_if<IntentCheck>(&payload_); }
        /// Why it failed; none in any other phase.
        const std::string* message() const { return std::get_if<std::string>(&payload_); }

        bool operator==(const Phase&) const = default;

      private:
        explicit Phase(Case kind) : kind_(kind) {}

        Case kind_;
        std::variant<std::monostate, IntentCheck, std::string> payload_;
    };

    /// The state of this process, made on first use from the platform that was given to `install`.
    static const std::shared_ptr<AppState>& shared();
    static void install(const Platform& platform);
    /// Releases the shared state. Must be called before the platform ends.
    static void uninstall();
    /// A separate state, for a caller that brings its own platform.
    static std::shared_ptr<AppState> make(const Platform& platform);

    ~AppState();

    // Published properties. Each change is announced before it is stored.
    const Published<Phase>& phase() const { return phase_; }
    /// The running transcript of the current dictation.
    const Published<std::string>& interimTranscript() const { return interimTranscript_; }
    /// A short line about the current state, for the overlay.
    const Published<std::string>& statusMessage() const { return statusMessage_; }
    const Published<bool>& hasDeepgramAPIKey() const { return hasDeepgramAPIKey_; }
    /// Not persisted: the program always starts enabled.
    const Published<bool>& isEnabled() const { return isEnabled_; }
    const Published<bool>& intentCheckEnabled() const { return intentCheckEnabled_; }
    /// True while the shortcut recorder records; keys do not reach a dictation then.
    const Published<bool>& isCapturingShortcut() const { return isCapturingShortcut_; }
    const Published<ActivationMode>& activationMode() const { return activationMode_; }
    const Published<DictationShortcut>& shortcut() const { return shortcut_; }

    // Settings. The last three are persisted by every call, even when the value is unchanged.
    void setHasDeepgramAPIKey(bool hasKey);
    void setEnabled(bool enabled) { isEnabled_.set(enabled); }
    void setCapturingShortcut(bool capturing) { isCapturingShortcut_.set(capturing); }
    void setIntentCheckEnabled(bool enabled);
    void setActivationMode(ActivationMode mode);
    void setShortcut(const DictationShortcut& shortcut);

    /// Starts a dictation, or confirms a pending review. Does nothing while disabled or busy.
    void beginDictation();
    /// Stops the capture and produces the result. Only acts while `listening`.
    void endDictation();
    /// Inserts the reviewed prompt. Only acts while `reviewing`.
    void confirmIntent();
    /// Abandons the dictation. Only acts while `listening`, `processing` or `reviewing`.
    void cancelDictation();

    /// The words of a dictation that failed or was cancelled; empty when there are none. Kept until
    /// the next dictation is inserted, at most ten minutes.
    const std::string& uninsertedText() const { return uninsertedText_.text(); }
    enum class Recovery {
        recovered,
        nothingToRecover,
        refused, ///< the desktop gave the clipboard to no program; the text is kept
    };
    /// Copies those words to the pasteboard, for the user to paste.
    Recovery recoverUninsertedText();

    /// Stores the key without the whitespace around it; a blank key is ignored. Throws the secret
    /// store's error.
    void saveDeepgramAPIKey(std::string_view key);

    /// Checks whether the key is stored, which another program or a late keyring may have changed.
    /// Returns at once and prompts nobody; when the answer is unknown, nothing changes.
    void checkDeepgramAPIKey();

    /// "Hold fn to speak" or "Press fn to speak", with the name of the shortcut.
    std::string idleInstruction() const;

    const WaveformState& waveform() const { return waveform_; }

  private:
    using SessionID = boost::uuids::uuid;

    explicit AppState(const Platform& platform);

    Awaitable<void> connect(std::string key, SessionID identity);
    void startCapture(SessionID identity);
    Awaitable<void> finish(Task sending, SessionID identity);
    void receiveTranscript(const std::string& text, SessionID identity);
    void receiveLevels(std::span<const double> levels);
    void insert(const std::string& text);
    void fail(const std::string& message);
    void keepUninsertedText();
    void scheduleHide(Clock::Duration after);
    void tearDownCapture();
    void cancelTranscription();
    void updateIdleStatus();
    bool isConnecting(SessionID identity) const;

    const Platform platform_;
    // A copy, because a task may be the last owner of the state, after the main actor has gone.
    const Executor main_;

    Published<Phase> phase_;
    Published<std::string> interimTranscript_;
    Published<std::string> statusMessage_;
    Published<bool> hasDeepgramAPIKey_;
    Published<bool> isEnabled_;
    Published<bool> intentCheckEnabled_;
    Published<bool> isCapturingShortcut_;
    Published<ActivationMode> activationMode_;
    Published<DictationShortcut> shortcut_;

    KeychainStore keychain_;
    WaveformState waveform_;
    AudioCaptureService audio_;
    const std::shared_ptr<DeepgramService> deepgram_;
    TextInsertionService inserter_;
    Logger latencyLog_;

    std::uint64_t keyCheck_ = 0; ///< answers to earlier checks are out of date

    SessionID sessionID_;
    std::optional<Clock::Instant> speechStartedAt_;
    std::optional<Clock::Instant> stopRequestedAt_;
    bool recordedFirstText_ = false;
    UninsertedText uninsertedText_;
    Task expiryTask_;
    Task hideTask_;
    std::optional<AudioPacketStream> audioPacketStream_;
    Task audioSendTask_;
    /// The newest send task, until the next one: it may still send queued packets when its
    /// dictation has been replaced by another.
    Task lastSendTask_;
};

} // namespace orlune
