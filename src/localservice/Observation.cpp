#include "localservice/Observation.h"

#include <algorithm>

namespace orlune::localservice {

std::size_t Observation::count(Kind kind) const {
    return static_cast<std::size_t>(std::ranges::count(received, kind, &Received::kind));
}

bool Observation::hasText(std::string_view text) const {
    return std::ranges::any_of(received, [&](const Received& message) {
        return message.kind == Kind::text && message.text == text;
    });
}

std::size_t ObservationLog::add() {
    const std::scoped_lock lock(mutex_);
    observations_.emplace_back();
    changed_.notify_all();
    return observations_.size() - 1;
}

void ObservationLog::change(std::size_t number, const Change& change) {
    const std::scoped_lock lock(mutex_);
    change(observations_.at(number));
    changed_.notify_all();
}

std::vector<Observation> ObservationLog::all() const {
    const std::scoped_lock lock(mutex_);
    return observations_;
}

bool ObservationLog::waitUntil(
    const std::function<bool(const std::vector<Observation>&)>& condition,
    std::chrono::milliseconds limit) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, limit, [&] { return condition(observations_); });
}

} // namespace orlune::localservice
