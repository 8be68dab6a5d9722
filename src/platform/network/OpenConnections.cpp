#include "platform/network/OpenConnections.h"

#include "platform/network/BeastConnection.h"

namespace orlune {

void OpenConnections::add(std::weak_ptr<BeastConnection> connection) {
    const std::lock_guard lock(mutex_);
    std::erase_if(connections_, [](const auto& former) { return former.expired(); });
    connections_.push_back(std::move(connection));
}

std::shared_ptr<void> OpenConnections::hold() {
    const std::lock_guard lock(mutex_);
    ++heldCount_;
    return {nullptr, [self = shared_from_this()](void*) {
                const std::lock_guard releasing(self->mutex_);
                --self->heldCount_;
                self->changed_.notify_all();
            }};
}

bool OpenConnections::close(std::chrono::milliseconds limit) {
    std::unique_lock lock(mutex_);
    const auto connections = connections_;
    lock.unlock();
    for (const auto& weak : connections) {
        if (const auto connection = weak.lock()) {
            connection->cancel(WebSocketCloseCode::goingAway);
        }
    }
    lock.lock();
    return changed_.wait_for(lock, limit, [this] { return heldCount_ == 0; });
}

} // namespace orlune
