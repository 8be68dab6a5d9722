// Pastes with keys that an injector presses: where X lets nobody post keys into other programs, as
// in Wayland sessions. Main thread, with Qt's loop running. The chord is the same in every program,
// because such desktops do not say which one has the keyboard.
#pragma once

#include "platform/KeyEventPosting.h"
#include "platform/linux/paste/KeyInjector.h"

#include <QBasicTimer>
#include <QObject>

#include <chrono>
#include <functional>
#include <vector>

namespace orlune {

class InjectedPaste final : public QObject, public KeyEventPosting {
  public:
    /// How long a key stays down; some programs miss a key that comes up at once.
    static constexpr std::chrono::milliseconds pressDuration{30};
    /// How long the paste waits for the user to let go of the shortcut. Modifiers that are still
    /// held would become part of the chord.
    static constexpr std::chrono::milliseconds heldKeysLimit{1000};
    /// The same where the desktop does not report the release: a tap is over by then.
    static constexpr std::chrono::milliseconds tapDuration{250};

    enum class Chord {
        shiftInsert, ///< terminals paste the primary selection with it, others the clipboard
        controlV,    ///< for users whose programs do not paste with Insert
    };
    enum class HeldKeys { none, some, unknown };
    struct Surroundings {
        Chord chord = Chord::shiftInsert;
        /// Offers the clipboard's text as the primary selection too. False when that is refused;
        /// Shift-Insert is not posted then, because terminals would paste another text.
        std::function<bool()> ownPrimarySelection;
        /// Whether the user holds keys that would change the chord.
        std::function<HeldKeys()> heldKeys;
    };

    /// The injector outlives this object.
    InjectedPaste(KeyInjector& injector, Surroundings surroundings);
    /// Lets go of every key that is down.
    ~InjectedPaste() override;

    void prepare() override;
    void rest() override;
    /// None when the injector cannot press keys now.
    std::optional<EventSource> createSource(EventSourceState state) override;
    /// Only V has an event.
    std::optional<KeyboardEvent> createKeyboardEvent(const EventSource& source,
                                                     std::uint16_t virtualKey,
                                                     bool isKeyDown) override;
    /// Command-V down starts the chord, whose keys come up by themselves. False while another one
    /// is under way.
    bool post(EventTapLocation location, const KeyboardEvent& event) override;

  protected:
    void timerEvent(QTimerEvent* event) override;

  private:
    enum class Step { idle, waitingForKeys, down };

    void wakeAfter(std::chrono::milliseconds duration);
    bool mustWait() const;
    void pressChord();
    void releaseChord();

    KeyInjector& injector_;
    Surroundings surroundings_;
    std::vector<KeyInjector::KeyCode> keys_;
    Step step_ = Step::idle;
    bool rests_ = false; ///< `rest` was called before the chord was complete
    std::chrono::steady_clock::time_point waitingSince_;
    QBasicTimer timer_;
};

} // namespace orlune
