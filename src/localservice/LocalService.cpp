#include "localservice/LocalService.h"

#include "localservice/RecognitionSession.h"
#include "localservice/ScriptSession.h"
#include "localservice/ServiceContext.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <cassert>
#include <stdexcept>
#include <thread>

namespace orlune::localservice {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

asio::ssl::context makeEncryption(const LocalService::Encryption& files) {
    asio::ssl::context context(asio::ssl::context::tls_server);
    context.set_options(asio::ssl::context::default_workarounds | asio::ssl::context::no_tlsv1
                        | asio::ssl::context::no_tlsv1_1);
    error_code error;
    context.use_certificate_chain_file(files.certificateChain.string(), error);
    if (error) {
        throw std::runtime_error("The certificate " + files.certificateChain.string()
                                 + " cannot be used: " + error.message() + ".");
    }
    context.use_private_key_file(files.privateKey.string(), asio::ssl::context::pem, error);
    if (error) {
        throw std::runtime_error("The private key " + files.privateKey.string()
                                 + " cannot be used: " + error.message() + ".");
    }
    return context;
}

HandshakeRefusal scriptedRefusal(const Script::Refuse& refuse, std::string_view requestID) {
    auto response = refusalResponse(refuse.refusal, requestID);
    if (refuse.body) {
        response.body() = *refuse.body;
    }
    if (refuse.chunked) {
        response.content_length(boost::none);
        response.chunked(true);
    } else {
        response.prepare_payload();
    }
    for (const auto& [name, value] : refuse.headers) {
        response.set(name, value);
    }
    return response;
}

asio::awaitable<void> pause(std::chrono::milliseconds duration) {
    asio::steady_timer timer(co_await asio::this_coro::executor, duration);
    error_code ignored;
    auto token = asio::redirect_error(asio::use_awaitable, ignored);
    co_await timer.async_wait(token);
}

asio::awaitable<void> stream(std::shared_ptr<Peer> peer, const HandshakeRequest& request) {
    const bool accepted = co_await peer->accept(request);
    if (!accepted) {
        co_return;
    }
    if (peer->context().options.script) {
        co_await ScriptSession::run(std::move(peer));
    } else {
        co_await RecognitionSession::run(std::move(peer));
    }
}

asio::awaitable<void> open(std::shared_ptr<Peer> peer, const HandshakeRequest& request) {
    const auto& options = peer->context().options;
    const auto authorization = checkAuthorization(request, options.requiredKey);
    peer->record([&](Observation& observation) {
        observation.authorizationScheme = authorization.scheme;
        observation.authorized = authorization.accepted;
    });
    // A scripted refusal applies only to requests that are otherwise valid.
    const auto refusal = checkHandshake(request, authorization);
    if (refusal) {
        peer->log(refusal->message);
        auto response = refusalResponse(*refusal, peer->requestID());
        co_await peer->refuse(std::move(response));
    } else if (options.script && options.script->refuse) {
        auto response = scriptedRefusal(*options.script->refuse, peer->requestID());
        co_await peer->refuse(std::move(response));
    } else {
        co_await stream(peer, request);
    }
}

asio::awaitable<void> serve(std::shared_ptr<Peer> peer) {
    const auto& script = peer->context().options.script;
    if (script && script->openingDelay.count() > 0) {
        co_await pause(script->openingDelay);
    }
    if (script && script->opening == Script::Opening::silent) {
        co_await peer->waitUntilGone();
        co_return;
    }
    const bool encrypted = co_await peer->encrypt();
    if (!encrypted) {
        co_return;
    }
    const auto request = co_await peer->readRequest();
    if (!request) {
        co_return;
    }
    if (script && script->opening != Script::Opening::accept) {
        peer->drop(/*reset=*/script->opening == Script::Opening::reset);
        co_return;
    }
    co_await open(peer, *request);
}

} // namespace

class LocalService::Server {
  public:
    explicit Server(ServiceContext& context) : context_(context), acceptor_(io_) {}

    std::uint16_t listen() {
        const tcp::endpoint endpoint(asio::ip::address_v4::loopback(), context_.options.port);
        try {
            acceptor_.open(endpoint.protocol());
            acceptor_.set_option(tcp::acceptor::reuse_address(true));
            if (context_.options.script && context_.options.script->receiveBuffer) {
                const asio::socket_base::receive_buffer_size size(
                    *context_.options.script->receiveBuffer);
                acceptor_.set_option(size);
            }
            acceptor_.bind(endpoint);
            acceptor_.listen();
        } catch (const boost::system::system_error& error) {
            throw std::runtime_error("Port " + std::to_string(endpoint.port())
                                     + " of 127.0.0.1 cannot be used: " + error.code().message()
                                     + ".");
        }
        const auto accepting = [this]() -> asio::awaitable<void> { co_await acceptClients(); };
        asio::co_spawn(io_, accepting, asio::detached);
        thread_ = std::thread([this] { io_.run(); });
        return acceptor_.local_endpoint().port();
    }

    /// Ends the thread. Connections are cut when this object is destroyed, after the workers have
    /// finished.
    void end() {
        io_.stop();
        if (thread_.joinable()) {
            thread_.join();
        }
        context_.workers.join();
    }

  private:
    asio::awaitable<void> acceptClients() {
        while (true) {
            error_code error;
            auto token = asio::redirect_error(asio::use_awaitable, error);
            auto socket = co_await acceptor_.async_accept(token);
            if (error) {
                // Descriptors are exhausted, or the client has already gone: neither a reason to
                // stop nor to retry at once.
                co_await pause(std::chrono::milliseconds(50));
                continue;
            }
            const auto peer = std::make_shared<Peer>(context_, std::move(socket));
            const auto serving = [peer]() -> asio::awaitable<void> { co_await serve(peer); };
            asio::co_spawn(io_, serving,
                           [peer](const std::exception_ptr& failure) { report(*peer, failure); });
        }
    }

    static void report(Peer& peer, const std::exception_ptr& failure) {
        try {
            if (failure) {
                std::rethrow_exception(failure);
            }
        } catch (const std::exception& error) {
            peer.log(error.what());
        }
    }

    ServiceContext& context_;
    asio::io_context io_{1};
    tcp::acceptor acceptor_;
    std::thread thread_;
};

LocalService::LocalService(Options options) : context_(std::make_unique<ServiceContext>()) {
    context_->options = std::move(options);
}

LocalService::~LocalService() {
    stop();
}

std::uint16_t LocalService::start() {
    assert(!server_ && port_ == 0);
    const auto& options = context_->options;
    if (options.encryption) {
        context_->encryption.emplace(makeEncryption(*options.encryption));
    }
    if (!options.script) {
        auto factory = options.makeRecogniser;
        if (!factory) {
            factory = [directory = options.modelDirectory] {
                return std::make_unique<PocketSphinxRecogniser>(directory);
            };
        }
        context_->recognisers = std::make_shared<RecogniserPool>(std::move(factory));
        context_->recognisers->warmUp();
    }
    server_ = std::make_unique<Server>(*context_);
    try {
        port_ = server_->listen();
    } catch (...) {
        server_.reset();
        throw;
    }
    return port_;
}

void LocalService::stop() {
    if (server_) {
        server_->end();
        server_.reset();
    }
}

std::string LocalService::address() const {
    return (context_->encryption ? "wss://127.0.0.1:" : "ws://127.0.0.1:") + std::to_string(port_);
}

std::vector<Observation> LocalService::observations() const {
    return context_->observations.all();
}

bool LocalService::waitUntil(const std::function<bool(const std::vector<Observation>&)>& condition,
                             std::chrono::milliseconds limit) const {
    return context_->observations.waitUntil(condition, limit);
}

} // namespace orlune::localservice
