#include "services/DeepgramService.h"

#include "core/Text.h"
#include "services/DeepgramEnvelope.h"

#include <boost/url/parse.hpp>
#include <boost/url/url.hpp>

#include <chrono>
#include <utility>

namespace orlune {

using namespace std::chrono_literals;

namespace {

constexpr auto resultWait = 1800ms;
constexpr auto resultPollInterval = 20ms;
constexpr auto closeStreamMessage = R"({"type":"CloseStream"})";

constexpr auto streamingPath = "/v1/listen";
constexpr std::chrono::seconds connectionTimeout{60};

} // namespace

const char* DeepgramService::ServiceError::what() const noexcept {
    switch (errorCase_) {
    case Case::notConnected:
        return "Speech service isn't connected";
    case Case::noTranscript:
        return "No speech was transcribed";
    }
    return "";
}

DeepgramService::DeepgramService(WebSocketSession& session, Clock& clock,
                                 const Executor& background, std::string endpoint)
    : Actor(background), session_(session), clock_(clock), endpoint_(std::move(endpoint)) {}

Awaitable<void> DeepgramService::start(std::string apiKey, int sampleRate,
                                       TranscriptHandler onTranscript) {
    return isolated(
        startOnActor(shared_from_this(), std::move(apiKey), sampleRate, std::move(onTranscript)));
}

Awaitable<void> DeepgramService::send(AudioPacket packet) {
    return isolated(sendOnActor(shared_from_this(), std::move(packet)));
}

Awaitable<std::string> DeepgramService::finish() {
    return isolated(finishOnActor(shared_from_this()));
}

Awaitable<void> DeepgramService::cancel() {
    return isolated(cancelOnActor(shared_from_this()));
}

Awaitable<void> DeepgramService::startOnActor(Self self, std::string apiKey, int sampleRate,
                                              TranscriptHandler onTranscript) {
    self->tearDown();
    self->finalSegments_.clear();
    self->interim_.clear();
    self->receivedMetadata_ = false;
    self->finishing_ = false;
    self->onTranscript_ = std::move(onTranscript);
    self->socket_ = self->session_.webSocketTask(self->request(apiKey, sampleRate));
    self->socket_->resume();
    self->receiveTask_ =
        Task::start(self->executor(), [weakSelf = self->weak_from_this()](Task task) {
            return receiveAll(weakSelf, std::move(task));
        });
    co_return;
}

WebSocketRequest DeepgramService::request(const std::string& apiKey, int sampleRate) const {
    WebSocketRequest request;
    request.timeout = connectionTimeout;
    request.headers = {{"Authorization", "Token " + apiKey}};
    request.refusalReason = {.header = "dg-error", .member = "err_msg"};
    const auto endpoint = boost::urls::parse_uri(endpoint_);
    if (!endpoint) {
        request.url = endpoint_; // the connection reports what is wrong with it
        return request;
    }
    boost::urls::url url = *endpoint;
    url.set_path(streamingPath);
    auto query = url.params();
    query.clear();
    query.append({"model", "nova-3"});
    query.append({"language", "en-US"});
    query.append({"encoding", "linear16"});
    query.append({"sample_rate", std::to_string(sampleRate)});
    query.append({"channels", "1"});
    query.append({"interim_results", "true"});
    query.append({"smart_format", "true"});
    query.append({"punctuate", "true"});
    query.append({"endpointing", "300"});
    query.append({"vad_events", "true"});
    request.url = std::string(url.buffer());
    return request;
}

Awaitable<void> DeepgramService::receiveAll(std::weak_ptr<DeepgramService> weakSelf, Task task) {
    const auto self = weakSelf.lock();
    if (!self) {
        co_return;
    }
    while (!task.isCancelled() && self->socket_) {
        const Socket socket = self->socket_;
        WebSocketMessage message;
        bool failed = false;
        try {
            auto receiving = socket->receive();
            message = co_await std::move(receiving);
        } catch (const std::exception&) {
            failed = true; // finish() reports what a broken connection means for the dictation
        }
        // A message that was under way when the connection was replaced belongs to no dictation.
        if (task.isCancelled() || self->socket_ != socket) {
            co_return;
        }
        if (failed) {
            if (!self->finishing_ && self->onTranscript_) {
                self->onTranscript_(self->assembledTranscript());
            }
            co_return;
        }
        self->handle(message.bytes);
    }
}

void DeepgramService::handle(std::string_view data) {
    const auto envelope = Envelope::decode(data);
    if (!envelope) {
        return;
    }
    if (envelope->type == "Metadata") {
        receivedMetadata_ = true;
        return;
    }
    if (envelope->type != "Results" || !envelope->channel
        || envelope->channel->alternatives.empty()) {
        return;
    }
    const auto& transcript = envelope->channel->alternatives.front().transcript;
    if (!transcript) {
        return;
    }
    const auto text = trimmedWhitespaceAndNewlines(*transcript);
    if (text.empty()) {
        return;
    }
    if (envelope->isFinal.value_or(false)) {
        finalSegments_.emplace_back(text);
        interim_.clear();
    } else {
        interim_ = text;
    }
    if (onTranscript_) {
        onTranscript_(assembledTranscript());
    }
}

std::string DeepgramService::assembledTranscript() const {
    std::string joined;
    const auto append = [&joined](const std::string& text) {
        if (!joined.empty()) {
            joined += ' ';
        }
        joined += text;
    };
    for (const auto& segment : finalSegments_) {
        append(segment);
    }
    if (!interim_.empty()) {
        append(interim_);
    }
    return std::string(trimmedWhitespaceAndNewlines(joined));
}

Awaitable<void> DeepgramService::sendOnActor(Self self, AudioPacket packet) {
    const Socket socket = self->socket_;
    // An empty binary message would tell the service that the audio has ended.
    if (!socket || self->finishing_ || packet.empty()) {
        co_return;
    }
    try {
        WebSocketMessage message;
        message.kind = WebSocketMessage::Kind::binary;
        message.bytes = std::move(packet);
        auto sending = socket->send(std::move(message));
        co_await std::move(sending);
    } catch (const std::exception&) {
        // A packet that cannot be sent is dropped: the dictation goes on, and finish() reports the
        // error.
    }
}

Awaitable<std::string> DeepgramService::finishOnActor(Self self) {
    const Socket socket = self->socket_;
    if (!socket) {
        throw ServiceError(ServiceError::Case::notConnected);
    }
    self->finishing_ = true;
    WebSocketMessage closeStream;
    closeStream.kind = WebSocketMessage::Kind::text;
    closeStream.bytes = closeStreamMessage;
    auto sending = socket->send(std::move(closeStream));
    co_await std::move(sending);

    const auto isReplaced = [&] { return self->socket_ && self->socket_ != socket; };
    const auto deadline = self->clock_.now() + resultWait;
    while (!isReplaced() && !self->receivedMetadata_ && self->clock_.now() < deadline) {
        auto sleeping = self->clock_.sleep(resultPollInterval);
        co_await std::move(sleeping);
    }
    if (isReplaced()) {
        throw ServiceError(ServiceError::Case::noTranscript);
    }
    auto transcript = self->assembledTranscript();
    socket->cancel(WebSocketCloseCode::normalClosure);
    self->socket_ = nullptr;
    self->receiveTask_.cancel();
    self->receiveTask_ = Task();
    if (transcript.empty()) {
        throw ServiceError(ServiceError::Case::noTranscript);
    }
    co_return transcript;
}

Awaitable<void> DeepgramService::cancelOnActor(Self self) {
    self->tearDown();
    co_return;
}

void DeepgramService::tearDown() {
    finishing_ = true;
    receiveTask_.cancel();
    receiveTask_ = Task();
    if (socket_) {
        socket_->cancel(WebSocketCloseCode::goingAway);
        socket_ = nullptr;
    }
}

} // namespace orlune
