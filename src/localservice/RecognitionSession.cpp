#include "localservice/RecognitionSession.h"

#include "localservice/Messages.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace orlune::localservice {
namespace {

namespace asio = boost::asio;

constexpr std::uint16_t normalClosure = 1000;
constexpr std::uint16_t policyViolation = 1008;
constexpr std::uint16_t serviceFault = 1011;
constexpr std::string_view noAudioReason =
    "Deepgram did not receive audio data or a text message within the timeout "
    "window. See https://dpgr.am/net0001";
constexpr std::string_view notAudioReason = "DATA-0000: the payload cannot be decoded as audio.";
constexpr std::string_view noRecogniserReason = "The recogniser could not be started.";

constexpr std::size_t bytesPerJob =
    32000; // a second of audio: the longest wait of one client for another
constexpr std::size_t mostQueuedBytes = 4U << 20U; // two minutes; TCP slows a faster client down

} // namespace

RecognitionSession::RecognitionSession(std::shared_ptr<Peer> peer)
    : peer_(std::move(peer)), queueChanged_(peer_->transport().get_executor()),
      queueShrank_(peer_->transport().get_executor()),
      audioLimit_(peer_->transport().get_executor()) {}

asio::awaitable<void> RecognitionSession::run(std::shared_ptr<Peer> peer) {
    const auto session = std::make_shared<RecognitionSession>(std::move(peer));
    session->waitForAudio();
    const auto answering = [session]() -> asio::awaitable<void> {
        co_await session->answerClient();
    };
    asio::co_spawn(co_await asio::this_coro::executor, answering, asio::detached);
    co_await session->readClient();
}

asio::awaitable<void> RecognitionSession::readClient() {
    while (auto incoming = co_await peer_->read()) {
        if (incoming->isText) {
            sortText(std::move(incoming->payload));
        } else {
            sortBinary(std::move(incoming->payload));
        }
        while (queuedBytes_ > mostQueuedBytes && !gone_) {
            co_await queueShrank_.wait();
        }
    }
    gone_ = true;
    audioLimit_.cancel();
    queueChanged_.notify();
}

void RecognitionSession::sortText(std::string text) {
    if (closing_) {
        return;
    }
    const auto type = messageType(text);
    if (type == "CloseStream") {
        closing_ = true;
        audioLimit_.cancel();
        enqueue(Event::endOfAudio, {});
        return;
    }
    waitForAudio();
    if (type != "KeepAlive") {
        enqueue(Event::unknownText, std::move(text));
    }
}

void RecognitionSession::sortBinary(std::string payload) {
    if (payload.empty() || closing_) {
        // An empty message, or audio after CloseStream.
        faulty_ = true;
        closing_ = true;
        audioLimit_.cancel();
        enqueue(Event::notAudio, {});
        return;
    }
    waitForAudio();
    enqueue(Event::audio, std::move(payload));
}

void RecognitionSession::enqueue(Event event, std::string payload) {
    queuedBytes_ += payload.size();
    const bool joins = event == Event::audio && !queue_.empty()
                       && queue_.back().event == Event::audio
                       && queue_.back().payload.size() + payload.size() <= bytesPerJob;
    if (joins) {
        queue_.back().payload += payload;
    } else {
        queue_.push_back({.event = event, .payload = std::move(payload)});
    }
    queueChanged_.notify();
}

void RecognitionSession::waitForAudio() {
    audioLimit_.expires_after(peer_->context().options.audioTimeout);
    audioLimit_.async_wait([weak = weak_from_this()](boost::system::error_code cancelled) {
        const auto self = weak.lock();
        if (self && !cancelled && !self->closing_) {
            self->closing_ = true;
            self->enqueue(Event::noAudio, {});
        }
    });
}

asio::awaitable<void> RecognitionSession::answerClient() {
    bool going = true;
    std::string fault;
    try {
        while (going && !gone_) {
            if (queue_.empty()) {
                co_await queueChanged_.wait();
                continue;
            }
            auto queued = std::move(queue_.front());
            queue_.pop_front();
            queuedBytes_ -= queued.payload.size();
            queueShrank_.notify();
            going = co_await answer(std::move(queued));
        }
    } catch (const std::exception& error) {
        fault = error.what();
    }
    if (!fault.empty()) {
        peer_->log(fault);
        closing_ = true;
        co_await peer_->close(serviceFault, noRecogniserReason);
    }
    // The reader must not wait for a queue that is no longer emptied.
    queuedBytes_ = 0;
    queueShrank_.notify();
}

asio::awaitable<bool> RecognitionSession::answer(Queued queued) {
    switch (queued.event) {
    case Event::audio: {
        auto messages = co_await transcribe(std::move(queued));
        co_return co_await sendAll(std::move(messages));
    }
    case Event::unknownText: {
        auto text = errorMessage("Could not deserialize last text message: unknown message type",
                                 queued.payload);
        co_return co_await peer_->send(text);
    }
    case Event::endOfAudio:
        co_await finishWith(std::move(queued), normalClosure, {});
        co_return false;
    case Event::noAudio:
        co_await finishWith(std::move(queued), serviceFault, noAudioReason);
        co_return false;
    case Event::notAudio:
        co_await finishWith(std::move(queued), policyViolation, notAudioReason);
        co_return false;
    }
    co_return false;
}

asio::awaitable<void> RecognitionSession::finishWith(Queued queued, std::uint16_t code,
                                                     std::string_view reason) {
    auto messages = co_await transcribe(std::move(queued));
    const bool sent = co_await sendAll(std::move(messages));
    if (sent) {
        // Audio may have arrived after CloseStream while the last words were decoded.
        co_await peer_->close(faulty_ ? policyViolation : code, faulty_ ? notAudioReason : reason);
    }
}

asio::awaitable<bool> RecognitionSession::sendAll(Transcriber::Messages messages) {
    for (const auto& message : messages) {
        const bool sent = co_await peer_->send(message);
        if (!sent) {
            co_return false;
        }
    }
    co_return true;
}

asio::awaitable<Transcriber::Messages> RecognitionSession::transcribe(Queued queued) {
    const auto job = [self = shared_from_this(),
                      work = std::move(queued)]() -> asio::awaitable<Transcriber::Messages> {
        co_return self->decode(work);
    };
    co_return co_await asio::co_spawn(peer_->context().workers, job, asio::use_awaitable);
}

Transcriber::Messages RecognitionSession::decode(const Queued& queued) {
    if (!transcriber_) {
        recogniser_ = peer_->context().recognisers->borrow();
        transcriber_.emplace(*recogniser_, peer_->requestID());
    }
    switch (queued.event) {
    case Event::audio:
        return transcriber_->feed(std::as_bytes(std::span(queued.payload)));
    case Event::endOfAudio:
        return transcriber_->finish();
    default:
        return transcriber_->abandon();
    }
}

} // namespace orlune::localservice
