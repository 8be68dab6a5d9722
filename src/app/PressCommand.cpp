#include "app/PressCommand.h"

#include <algorithm>
#include <utility>

namespace orlune {

PressCommand::PressCommand(std::function<void()> onPress) : onPress_(std::move(onPress)) {
    clock_.start();
    deadline_.setSingleShot(true);
    QObject::connect(&deadline_, &QTimer::timeout, &deadline_,
                     [this] { report(presses_.expire()); });
}

void PressCommand::run() {
    report(presses_.reportPress(now()));
}

void PressCommand::report(const RepeatedPresses::Edges& edges) {
    if (const auto deadline = presses_.deadline()) {
        deadline_.start(std::max(*deadline - now(), RepeatedPresses::Time(0)));
    } else {
        deadline_.stop();
    }
    for (const auto edge : edges) {
        if (edge == RepeatedPresses::Edge::press) {
            onPress_();
        }
    }
}

} // namespace orlune
