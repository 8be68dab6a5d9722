#pragma once

// A speech service on this machine that speaks the wire protocol of the live transcription service:
// it recognises what it hears, or plays a script. Whoever makes it owns it; it serves 127.0.0.1 on
// a thread of its own, on which it also calls `log`. start() throws std::runtime_error with a text
// for people; faults of clients end their connection only.

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

namespace orlune {

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
        /// Another recogniser than PocketSphinx. Called on any thread.
        RecogniserFactory makeRecogniser = nullptr;
        std::optional<Encryption> encryption = std::nullopt;
        /// Without one, every key is accepted that is not empty.
        std::optional<std::string> requiredKey = std::nullopt;
        /// A stream without audio for so long is ended, as the real service does after 10 to 12 s.
        std::chrono::milliseconds audioTimeout{11000};
        bool observe = true;    ///< keep observations: for tests, they grow with every message
        bool keepAudio = false; ///< keep the audio in them too
        std::function<void(const std::string&)> log =
            nullptr; ///< one line about a connection, never a key
    };

    explicit LocalService(Options options);
    ~LocalService();
    LocalService(const LocalService&) = delete;
    LocalService& operator=(const LocalService&) = delete;

    /// Loads the model, listens and returns the port. Once only.
    std::uint16_t start();
    /// Ends all connections and waits for the threads. Harmless when repeated.
    void stop();

    /// "ws://127.0.0.1:PORT", or "wss://...".
    std::string address() const;
    /// A snapshot of what was seen, one element per connection, in order of arrival.
    std::vector<Observation> observations() const;
    /// Waits until the condition holds of them, at most for `limit`; whether it came to hold. Any
    /// thread.
    bool waitUntil(const std::function<bool(const std::vector<Observation>&)>& condition,
                   std::chrono::milliseconds limit) const;

  private:
    class Server;

    std::unique_ptr<ServiceContext> context_;
    std::unique_ptr<Server> server_;
    std::uint16_t port_ = 0;
};

} // namespace orlune
