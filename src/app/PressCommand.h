// `orlune press`: the desktop runs it when a key goes down, again and again while the key is held,
// and not when it comes up. Main thread, with Qt's loop running.
#pragma once

#include "platform/linux/keys/RepeatedPresses.h"

#include <QElapsedTimer>
#include <QTimer>

#include <functional>

namespace orlune {

class PressCommand {
  public:
    /// The longest delay before the first repeat that GNOME's settings offer is 2 s, but few choose
    /// more than this; two presses within it are told apart with a delay of 0.3 s.
    static constexpr RepeatedPresses::Time longestDelay{1500};

    explicit PressCommand(std::function<void()> onPress);
    /// The desktop has run the command.
    void run();

  private:
    RepeatedPresses::Time now() const { return RepeatedPresses::Time(clock_.elapsed()); }
    void report(const RepeatedPresses::Edges& edges);

    std::function<void()> onPress_;
    RepeatedPresses presses_{longestDelay};
    QElapsedTimer clock_;
    QTimer deadline_;
};

} // namespace orlune
