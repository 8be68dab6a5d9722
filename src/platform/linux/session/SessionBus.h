// Short questions to other programs of the user's session over D-Bus, without a loop: each call
// waits for its answer within a bound, and never starts a program that is not running. Used on the
// thread that opened it. Failures are answers with a text for a person.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct sd_bus;
struct sd_bus_message;

namespace orlune {

class SessionBus {
  public:
    /// Long enough for a program that is waiting for the keyring at that moment.
    static constexpr std::chrono::seconds answerLimit{10};

    struct Address {
        const char* name;
        const char* path;
        const char* interface;
    };
    struct Answer {
        enum class Kind {
            answered,
            nobodyThere, ///< no running program has the name
            refused,     ///< an error of the interface's own
            failed,      ///< no answer in time, or none that can be understood
        };
        Kind kind = Kind::failed;
        /// The text that was answered, where there is one; else the error.
        std::string text;
    };
    enum class Arguments { none, emptyDictionary };

    /// None when there is no bus.
    static std::unique_ptr<SessionBus> open();
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    Answer call(const Address& address, const char* method, Arguments arguments = Arguments::none);
    /// Without an answer. Does nothing when nobody is there.
    void tell(const Address& address, const char* method);
    /// A boolean property; none when nobody is there to tell it.
    std::optional<bool> flag(const Address& address, const char* property);

  private:
    explicit SessionBus(sd_bus* bus) : bus_(bus) {}

    sd_bus* bus_;
};

} // namespace orlune
