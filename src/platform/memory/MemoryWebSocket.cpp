#include "platform/memory/MemoryWebSocket.h"

#include <exception>
#include <utility>

namespace orlune {

namespace {

constexpr auto cancelledText = "The connection was cancelled";

std::exception_ptr makeError(const std::string& text) {
    return std::make_exception_ptr(WebSocketError(text));
}

} // namespace

MemoryWebSocketTask::MemoryWebSocketTask(WebSocketRequest request, MemoryEvents events,
                                         std::string name)
    : request_(std::move(request)), events_(std::move(events)), name_(std::move(name)) {}

void MemoryWebSocketTask::record(const std::string& event) {
    events_->push_back(name_ + " " + event);
}

void MemoryWebSocketTask::resume() {
    const std::lock_guard lock(mutex_);
    resumed_ = true;
    record("resume");
}

Awaitable<void> MemoryWebSocketTask::send(WebSocketMessage message) {
    const auto self = shared_from_this();
    auto wait = withContinuation<std::monostate>(
        [self, &message](auto sent) { self->acceptSend(std::move(message), sent); });
    co_await std::move(wait);
}

Awaitable<WebSocketMessage> MemoryWebSocketTask::receive() {
    const auto self = shared_from_this();
    auto wait = withContinuation<WebSocketMessage>(
        [self](auto receiver) { self->acceptReceive(receiver); });
    co_return co_await std::move(wait);
}

void MemoryWebSocketTask::acceptSend(WebSocketMessage message,
                                     const Continuation<std::monostate>& sent) {
    const std::lock_guard lock(mutex_);
    if (breaksNow() || sendError_) {
        sent.fail(makeError(*sendError_));
        return;
    }
    const bool isText = message.kind == WebSocketMessage::Kind::text;
    record(isText ? "send text " + message.bytes
                  : "send binary " + std::to_string(message.bytes.size()));
    sent_.push_back(std::move(message));
    if (holding_) {
        held_.push_back(sent);
    } else {
        sent.resume();
    }
}

void MemoryWebSocketTask::acceptReceive(const Continuation<WebSocketMessage>& receiver) {
    const std::lock_guard lock(mutex_);
    if (!breaksNow() && !incoming_.empty()) {
        receiver.resume(std::move(incoming_.front()));
        incoming_.pop_front();
    } else if (receiveError_) {
        receiver.fail(makeError(*receiveError_));
    } else {
        receiver_ = receiver;
    }
}

void MemoryWebSocketTask::failAtOperation(int number) {
    const std::lock_guard lock(mutex_);
    operationsUntilFailure_ = number;
}

bool MemoryWebSocketTask::breaksNow() {
    if (operationsUntilFailure_ == 0) {
        return false;
    }
    --operationsUntilFailure_;
    if (operationsUntilFailure_ > 0) {
        return false;
    }
    constexpr auto text = "the connection broke";
    failHeld(text);
    incoming_.clear();
    receiveError_ = text;
    if (receiver_) {
        std::exchange(receiver_, std::nullopt)->fail(makeError(text));
    }
    return true;
}

void MemoryWebSocketTask::failHeld(const std::string& text) {
    sendError_ = text;
    for (const auto& held : std::exchange(held_, {})) {
        held.fail(makeError(text));
    }
}

void MemoryWebSocketTask::cancel(WebSocketCloseCode code) {
    const std::lock_guard lock(mutex_);
    closeCodes_.push_back(code);
    record("close " + std::to_string(static_cast<int>(code)));
    failHeld(cancelledText);
    incoming_.clear();
    receiveError_ = cancelledText;
    if (receiver_) {
        std::exchange(receiver_, std::nullopt)->fail(makeError(cancelledText));
    }
}

void MemoryWebSocketTask::deliver(WebSocketMessage message) {
    const std::lock_guard lock(mutex_);
    if (receiveError_) {
        return;
    }
    if (receiver_ && !receiver_->isResumed()) {
        std::exchange(receiver_, std::nullopt)->resume(std::move(message));
    } else {
        incoming_.push_back(std::move(message));
    }
}

void MemoryWebSocketTask::deliverText(std::string text) {
    WebSocketMessage message;
    message.kind = WebSocketMessage::Kind::text;
    message.bytes = std::move(text);
    deliver(std::move(message));
}

void MemoryWebSocketTask::failReceiving(std::string text) {
    const std::lock_guard lock(mutex_);
    receiveError_ = std::move(text);
    if (receiver_) {
        std::exchange(receiver_, std::nullopt)->fail(makeError(*receiveError_));
    }
}

void MemoryWebSocketTask::failSending(std::string text) {
    const std::lock_guard lock(mutex_);
    failHeld(text);
}

void MemoryWebSocketTask::holdSending() {
    const std::lock_guard lock(mutex_);
    holding_ = true;
}

void MemoryWebSocketTask::releaseSending() {
    const std::lock_guard lock(mutex_);
    holding_ = false;
    for (const auto& held : std::exchange(held_, {})) {
        held.resume();
    }
}

void MemoryWebSocketTask::release() {
    std::vector<Continuation<std::monostate>> held;
    std::optional<Continuation<WebSocketMessage>> receiver;
    const std::lock_guard lock(mutex_);
    held.swap(held_);
    receiver.swap(receiver_);
}

std::vector<WebSocketMessage> MemoryWebSocketTask::sent() const {
    const std::lock_guard lock(mutex_);
    return sent_;
}

std::vector<WebSocketCloseCode> MemoryWebSocketTask::closeCodes() const {
    const std::lock_guard lock(mutex_);
    return closeCodes_;
}

bool MemoryWebSocketTask::isResumed() const {
    const std::lock_guard lock(mutex_);
    return resumed_;
}

MemoryWebSocketSession::~MemoryWebSocketSession() {
    for (const auto& task : tasks_) {
        task->release();
    }
}

std::shared_ptr<WebSocketTask> MemoryWebSocketSession::webSocketTask(WebSocketRequest request) {
    const std::lock_guard lock(mutex_);
    auto task = std::make_shared<MemoryWebSocketTask>(
        std::move(request), events_, "socket " + std::to_string(tasks_.size() + 1));
    tasks_.push_back(task);
    return task;
}

std::vector<std::shared_ptr<MemoryWebSocketTask>> MemoryWebSocketSession::tasks() const {
    const std::lock_guard lock(mutex_);
    return tasks_;
}

std::shared_ptr<MemoryWebSocketTask> MemoryWebSocketSession::task() const {
    const std::lock_guard lock(mutex_);
    return tasks_.empty() ? nullptr : tasks_.back();
}

} // namespace orlune
