#pragma once

// One stream with real recognition. Kept alive by its two coroutines on the I/O thread: one reads
// from the client, the other takes the data from a queue, has it decoded on a worker thread, and
// sends all answers in order. Faults of the client end the stream with a close code, as in the real
// service.

#include "localservice/Peer.h"
#include "localservice/Signal.h"
#include "localservice/Transcriber.h"

#include <deque>
#include <optional>

namespace orlune::localservice {

class RecognitionSession : public std::enable_shared_from_this<RecognitionSession> {
  public:
    explicit RecognitionSession(std::shared_ptr<Peer> peer);

    /// Returns when the client is gone.
    static boost::asio::awaitable<void> run(std::shared_ptr<Peer> peer);

  private:
    enum class Event { audio, endOfAudio, unknownText, noAudio, notAudio };
    struct Queued {
        Event event = Event::audio;
        std::string payload;
    };

    boost::asio::awaitable<void> readClient();
    boost::asio::awaitable<void> answerClient();
    boost::asio::awaitable<bool> answer(Queued queued);
    boost::asio::awaitable<Transcriber::Messages> transcribe(Queued queued);
    boost::asio::awaitable<void> finishWith(Queued queued, std::uint16_t code,
                                            std::string_view reason);
    boost::asio::awaitable<bool> sendAll(Transcriber::Messages messages);
    Transcriber::Messages decode(const Queued& queued);
    void sortText(std::string text);
    void sortBinary(std::string payload);
    void enqueue(Event event, std::string payload);
    void waitForAudio();

    std::shared_ptr<Peer> peer_;
    Signal queueChanged_;
    Signal queueShrank_;
    boost::asio::steady_timer audioLimit_;
    std::deque<Queued> queue_;
    std::size_t queuedBytes_ = 0;
    bool closing_ = false; // after CloseStream or a fault, further messages are not processed
    bool faulty_ = false;  // the client has violated the protocol
    bool gone_ = false;
    RecogniserPool::Loan recogniser_;        // used on the worker threads, by one job at a time
    std::optional<Transcriber> transcriber_; // likewise
};

} // namespace orlune::localservice
