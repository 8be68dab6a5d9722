// Short calls to other programs of the user's session over D-Bus, without a loop. Each call waits
// for its answer within a time limit, and never starts a program that is not running. Used on the
// thread that opened it. Failures are return values with a text for the user.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct sd_bus;
struct sd_bus_message;

namespace orlune {

class SessionBus {
  public:
    /// Long enough for a program that is just waiting for the keyring.
    static constexpr std::chrono::seconds answerLimit{10};

    struct Address {
        const char* name;
        const char* path;
        const char* interface;
    };
    struct Answer {
        enum class Kind {
            answered,
            nobodyThere, ///< no running program owns the name
            refused,     ///< an error that the interface defines
            failed,      ///< no answer in time, or an invalid one
        };
        Kind kind = Kind::failed;
        /// The text of the answer, if there is one; else the error.
        std::string text;
    };
    enum class Arguments { none, emptyDictionary };

    /// None when there is no bus.
    static std::unique_ptr<SessionBus> open();
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    Answer call(const Address& address, const char* method, Arguments arguments = Arguments::none);
    /// Does not wait for an answer. Does nothing when no program owns the name.
    void tell(const Address& address, const char* method);
    /// A boolean property; none when no program answers.
    std::optional<bool> flag(const Address& address, const char* property);
    /// The same for a number.
    std::optional<std::uint32_t> number(const Address& address, const char* property);

  private:
    explicit SessionBus(sd_bus* bus) : bus_(bus) {}
    /// Reads into `value` what `type` says, in the letters of D-Bus.
    bool readProperty(const Address& address, const char* property, char type, void* value);

    sd_bus* bus_;
};

} // namespace orlune
