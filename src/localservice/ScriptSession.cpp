#include "localservice/ScriptSession.h"

#include "localservice/Messages.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <algorithm>

namespace orlune::localservice {
namespace {

namespace asio = boost::asio;

constexpr double bytesPerSecond = 32000; // 16-bit samples at 16 kHz

} // namespace

ScriptSession::ScriptSession(std::shared_ptr<Peer> peer)
    : peer_(std::move(peer)), heard_(peer_->transport().get_executor()),
      resumed_(peer_->transport().get_executor()), pause_(peer_->transport().get_executor()) {}

asio::awaitable<void> ScriptSession::run(std::shared_ptr<Peer> peer) {
    const auto session = std::make_shared<ScriptSession>(std::move(peer));
    const auto playing = [session]() -> asio::awaitable<void> { co_await session->play(); };
    // The script begins first, so that it can stall before anything is read.
    asio::co_spawn(co_await asio::this_coro::executor, playing, asio::detached);
    co_await session->readClient();
}

asio::awaitable<void> ScriptSession::readClient() {
    while (true) {
        while (stalled_) {
            co_await resumed_.wait();
        }
        const auto incoming = co_await peer_->read();
        if (!incoming) {
            break;
        }
        if (incoming->isText) {
            textTypes_.insert(messageType(incoming->payload).value_or(incoming->payload));
            textTypes_.insert("*");
        } else {
            audioBytes_ += incoming->payload.size();
        }
        heard_.notify();
    }
    gone_ = true;
    heard_.notify();
    pause_.cancel();
}

asio::awaitable<void> ScriptSession::play() {
    for (const auto& step : peer_->context().options.script->steps) {
        if (gone_) {
            break;
        }
        co_await std::visit([this](const auto& known) { return take(known); }, step);
    }
}

asio::awaitable<void> ScriptSession::take(const Script::Write& step) {
    std::string_view rest = step.bytes;
    const auto size = step.pieceSize == 0 ? rest.size() : step.pieceSize;
    while (!rest.empty() && !gone_) {
        const bool written = co_await peer_->writeRaw(rest.substr(0, size));
        if (!written) {
            break;
        }
        rest.remove_prefix(std::min(size, rest.size()));
    }
}

asio::awaitable<void> ScriptSession::take(const Script::WaitForAudio& step) {
    while (static_cast<double>(audioBytes_) < step.seconds * bytesPerSecond && !gone_) {
        co_await heard_.wait();
    }
}

asio::awaitable<void> ScriptSession::take(const Script::WaitForText& step) {
    while (!textTypes_.contains(step.type) && !gone_) {
        co_await heard_.wait();
    }
}

asio::awaitable<void> ScriptSession::take(const Script::WaitForClose&) {
    while (!gone_) {
        co_await heard_.wait();
    }
}

asio::awaitable<void> ScriptSession::take(const Script::Wait& step) {
    pause_.expires_after(step.duration);
    boost::system::error_code woken;
    auto token = asio::redirect_error(asio::use_awaitable, woken);
    co_await pause_.async_wait(token);
}

asio::awaitable<void> ScriptSession::take(const Script::Close& step) {
    co_await peer_->close(step.code, step.reason);
}

asio::awaitable<void> ScriptSession::take(const Script::Drop& step) {
    peer_->drop(step.reset);
    co_return;
}

asio::awaitable<void> ScriptSession::take(const Script::Stall& step) {
    stalled_ = step.stalled;
    resumed_.notify();
    co_return;
}

} // namespace orlune::localservice
