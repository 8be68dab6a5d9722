#include "platform/linux/session/SessionBus.h"

#include <systemd/sd-bus.h>

#include <array>
#include <cstdint>
#include <string_view>

namespace orlune {

namespace {

struct MessageRelease {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Message = std::unique_ptr<sd_bus_message, MessageRelease>;

class Error {
  public:
    Error() = default;
    ~Error() { sd_bus_error_free(&error_); }
    Error(const Error&) = delete;
    Error& operator=(const Error&) = delete;

    sd_bus_error* receive() { return &error_; }
    bool is(const char* name) const { return sd_bus_error_has_name(&error_, name) > 0; }
    /// An interface's error names begin with the name of the interface.
    bool isOf(std::string_view interface) const {
        return error_.name && std::string_view(error_.name).starts_with(interface);
    }
    std::string text() const {
        return error_.message ? error_.message : error_.name ? error_.name : "no answer";
    }

  private:
    sd_bus_error error_{};
};

Message methodCall(sd_bus* bus, const SessionBus::Address& address, const char* interface,
                   const char* method) {
    sd_bus_message* message = nullptr;
    if (sd_bus_message_new_method_call(bus, &message, address.name, address.path, interface, method)
        < 0) {
        return nullptr;
    }
    sd_bus_message_set_auto_start(message, /*b=*/0);
    return Message(message);
}

/// The answer, or none and the error.
Message answerTo(sd_bus* bus, sd_bus_message* message, Error& error) {
    constexpr auto limit = std::chrono::microseconds(SessionBus::answerLimit).count();
    sd_bus_message* reply = nullptr;
    sd_bus_call(bus, message, static_cast<std::uint64_t>(limit), error.receive(), &reply);
    return Message(reply);
}

} // namespace

std::unique_ptr<SessionBus> SessionBus::open() {
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0) {
        return nullptr;
    }
    return std::unique_ptr<SessionBus>(new SessionBus(bus));
}

SessionBus::~SessionBus() {
    sd_bus_flush_close_unref(bus_);
}

SessionBus::Answer SessionBus::call(const Address& address, const char* method,
                                    Arguments arguments) {
    const auto message = methodCall(bus_, address, address.interface, method);
    if (!message
        || (arguments == Arguments::emptyDictionary
            && sd_bus_message_append(message.get(), "a{sv}", 0) < 0)) {
        return {Answer::Kind::failed, "the call cannot be made"};
    }
    Error error;
    const auto reply = answerTo(bus_, message.get(), error);
    if (reply) {
        const char* text = "";
        const bool hasText = sd_bus_message_has_signature(reply.get(), "s") > 0;
        if (hasText) {
            sd_bus_message_read(reply.get(), "s", &text);
        }
        return {Answer::Kind::answered, text};
    }
    const bool isNobodyThere =
        error.is(SD_BUS_ERROR_SERVICE_UNKNOWN) || error.is(SD_BUS_ERROR_NAME_HAS_NO_OWNER);
    if (isNobodyThere) {
        return {Answer::Kind::nobodyThere, error.text()};
    }
    return {error.isOf(address.interface) ? Answer::Kind::refused : Answer::Kind::failed,
            error.text()};
}

void SessionBus::tell(const Address& address, const char* method) {
    if (const auto message = methodCall(bus_, address, address.interface, method)) {
        sd_bus_message_set_expect_reply(message.get(), /*b=*/0);
        sd_bus_send(bus_, message.get(), /*ret_cookie=*/nullptr); // closing the bus flushes it
    }
}

bool SessionBus::readProperty(const Address& address, const char* property, char type,
                              void* value) {
    const auto message = methodCall(bus_, address, "org.freedesktop.DBus.Properties", "Get");
    if (!message || sd_bus_message_append(message.get(), "ss", address.interface, property) < 0) {
        return false;
    }
    Error error;
    const auto reply = answerTo(bus_, message.get(), error);
    const std::array contents{type, '\0'};
    return reply && sd_bus_message_read(reply.get(), "v", contents.data(), value) >= 0;
}

std::optional<bool> SessionBus::flag(const Address& address, const char* property) {
    int isSet = 0; // D-Bus passes booleans as int
    return readProperty(address, property, 'b', &isSet) ? std::optional(isSet != 0) : std::nullopt;
}

std::optional<std::uint32_t> SessionBus::number(const Address& address, const char* property) {
    std::uint32_t number = 0;
    return readProperty(address, property, 'u', &number) ? std::optional(number) : std::nullopt;
}

} // namespace orlune
