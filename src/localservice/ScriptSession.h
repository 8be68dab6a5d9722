#pragma once

// One stream that plays a script. Kept alive by its two coroutines on the I/O thread: one reads
// from the client (unless the script stalls it), the other executes the steps in order. The script
// ends early when the client is gone.

#include "localservice/Peer.h"
#include "localservice/Signal.h"

#include <set>

namespace orlune::localservice {

class ScriptSession : public std::enable_shared_from_this<ScriptSession> {
  public:
    explicit ScriptSession(std::shared_ptr<Peer> peer);

    /// Executes the steps of the service's script; returns when the client is gone.
    static boost::asio::awaitable<void> run(std::shared_ptr<Peer> peer);

  private:
    boost::asio::awaitable<void> readClient();
    boost::asio::awaitable<void> play();
    boost::asio::awaitable<void> take(const Script::Write& step);
    boost::asio::awaitable<void> take(const Script::WaitForAudio& step);
    boost::asio::awaitable<void> take(const Script::WaitForText& step);
    boost::asio::awaitable<void> take(const Script::WaitForClose& step);
    boost::asio::awaitable<void> take(const Script::Wait& step);
    boost::asio::awaitable<void> take(const Script::Close& step);
    boost::asio::awaitable<void> take(const Script::Drop& step);
    boost::asio::awaitable<void> take(const Script::Stall& step);

    std::shared_ptr<Peer> peer_;
    Signal heard_;
    Signal resumed_;
    boost::asio::steady_timer pause_;
    std::size_t audioBytes_ = 0;
    std::set<std::string, std::less<>>
        textTypes_; // of the client's messages; "*" after any message
    bool stalled_ = false;
    bool gone_ = false;
};

} // namespace orlune::localservice
