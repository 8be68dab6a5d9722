#pragma once

// A speech service on this machine that speaks the protocol of the live transcription service: it
// recognises what it receives, or plays a script. Owned by its creator; serves 127.0.0.1 on its own
// thread, on which it also calls `log`. start() throws std::runtime_error with a text for the user;
// faults of clients only end their connection.

#include "localservice/Observation.h"
#include "localservice/PocketSphinxRecogniser.h"
#include "localservice/Script.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orlune::localservice {

struct ServiceContext;

class LocalService {
  public:
    struct Encryption {
        std::filesystem::path certificateChain; ///< PEM, the service's own certificate first
        std::filesystem::path privateKey;       ///< PEM
    };

    struct Options {
        std::uint16_t port = 0; ///< 0 lets the system choose
        std::optional<Script> script = std::nullopt;
        std::filesystem::path modelDirectory = PocketSphinxRecogniser::defaultModelDirectory;
        /// A recogniser other than PocketSphinx. Called on any thread.
        RecogniserFactory makeRecogniser = nullptr;
        std::optional<Encryption> encryption = std::nullopt;
        /// If not set, every non-empty key is accepted.
        std::optional<std::string> requiredKey = std::nullopt;
        /// A stream without audio for this long is ended; the real service takes 10 to 12 s.
        std::chrono::milliseconds audioTimeout{11000};
        bool observe = true;    ///< keep observations: for tests, they grow with every message
        bool keepAudio = false; ///< also keep the audio in them
        std::function<void(const std::string&)> log =
            nullptr; ///< one line about a connection, never a key
    };

    explicit LocalService(Options options);
    ~LocalService();
    LocalService(const LocalService&) = delete;
    LocalService& operator=(const LocalService&) = delete;

    /// Loads the model, listens and returns the port. May be called only once.
    std::uint16_t start();
    /// Ends all connections and waits for the threads. May be repeated.
    void stop();

    /// "ws://127.0.0.1:PORT", or "wss://...".
    std::string address() const;
    /// A snapshot of the observations, one element per connection, in order of arrival.
    std::vector<Observation> observations() const;
    /// Waits until the condition holds for them, at most for `limit`; returns whether it held. Any
    /// thread.
    bool waitUntil(const std::function<bool(const std::vector<Observation>&)>& condition,
                   std::chrono::milliseconds limit) const;

  private:
    class Server;

    std::unique_ptr<ServiceContext> context_;
    std::unique_ptr<Server> server_;
    std::uint16_t port_ = 0;
};

} // namespace orlune::localservice
