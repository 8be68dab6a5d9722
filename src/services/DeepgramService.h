// The client of the live transcription service: one connection per dictation. An actor, owned by
// the session controller for the life of the process and made with `make_shared`. The callback
// given to `start` runs on the actor and must only pass the text on. Failures of a connection are
// not reported until `finish`, which throws `ServiceError` or the connection's own error.
#pragma once

#include "core/AudioPacketStream.h"
#include "platform/WebSocket.h"
#include "platform/concurrency/Actor.h"
#include "platform/concurrency/Clock.h"
#include "platform/concurrency/Task.h"

#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orlune {

class DeepgramService final : public Actor, public std::enable_shared_from_this<DeepgramService> {
  public:
    class ServiceError final : public std::exception {
      public:
        enum class Case {
            notConnected,
            noTranscript,
        };

        explicit ServiceError(Case errorCase) : errorCase_(errorCase) {}

        Case errorCase() const { return errorCase_; }
        const char* what() const noexcept override;

        friend bool operator==(const ServiceError& left, const ServiceError& right) {
            return left.errorCase_ == right.errorCase_;
        }

      private:
        Case errorCase_;
    };

    using TranscriptHandler = std::function<void(std::string)>;

    /// `endpoint` is scheme, host and port of the service. The session and the clock must outlive
    /// the service; its strand runs on `background`.
    DeepgramService(WebSocketSession& session, Clock& clock, const Executor& background,
                    std::string endpoint);

    /// Opens a new connection, closing any previous one first. Returns once connecting has begun;
    /// `finish` reports a connection that fails later. `sampleRate` is in hertz. `onTranscript`
    /// receives everything recognised so far, never a delta, after each result that contains text.
    Awaitable<void> start(std::string apiKey, int sampleRate, TranscriptHandler onTranscript);

    /// Sends one packet and waits until the connection has taken it. The packet is dropped when
    /// there is no connection, when it is being closed, when the packet is empty, and when sending
    /// fails. Never throws.
    Awaitable<void> send(AudioPacket packet);

    /// Ends the audio, waits at most 1.8 s for the last results and returns the transcript, trimmed
    /// and never empty. Throws `ServiceError`, or the connection's error when the end of the audio
    /// could not be sent (the connection then stays until `cancel`).
    ///
    /// Like every operation it runs on when its caller is cancelled. When `start` replaces the
    /// connection while `finish` waits, `finish` does not touch the new connection and throws
    /// `noTranscript` at its next check, because its own text is gone.
    Awaitable<std::string> finish();

    /// Closes the connection at once; does nothing without one. Never throws.
    Awaitable<void> cancel();

  private:
    struct Alternative;
    struct Channel;
    struct Envelope;
    using Self = std::shared_ptr<DeepgramService>;
    using Socket = std::shared_ptr<WebSocketTask>;

    static Awaitable<void> startOnActor(Self self, std::string apiKey, int sampleRate,
                                        TranscriptHandler onTranscript);
    static Awaitable<void> sendOnActor(Self self, AudioPacket packet);
    static Awaitable<std::string> finishOnActor(Self self);
    static Awaitable<void> cancelOnActor(Self self);
    static Awaitable<void> receiveAll(std::weak_ptr<DeepgramService> weakSelf, Task task);

    void tearDown();
    void handle(std::string_view data);
    std::string assembledTranscript() const;
    WebSocketRequest request(const std::string& apiKey, int sampleRate) const;

    WebSocketSession& session_;
    Clock& clock_;
    const std::string endpoint_;

    Socket socket_;
    Task receiveTask_;
    std::vector<std::string> finalSegments_;
    std::string interim_;
    TranscriptHandler onTranscript_;
    bool receivedMetadata_ = false;
    bool finishing_ = false;
};

} // namespace orlune
