#include "app/doctor/InstanceCheck.h"

#include "app/remote/RemoteRequest.h"
#include "app/remote/Status.h"
#include "platform/linux/session/SessionBus.h"

namespace orlune {

Findings checkInstance(SessionBus* bus) {
    using State = Finding::State;
    using Kind = SessionBus::Answer::Kind;
    constexpr auto name = "running program";
    if (!bus) {
        return {{name, State::warning, "there is no session bus on which to find it",
                 "Start it inside a graphical session. Without a session bus, commands such as "
                 "\"orlune toggle\" do not reach it."}};
    }
    const auto answer = bus->call({busName, busPath, busInterface}, "Status");
    if (answer.kind == Kind::nobodyThere) {
        return {{name, State::warning, "it isn't running", "Start it: \"orlune\"."}};
    }
    const auto line = answer.kind == Kind::answered ? statusLine(answer.text) : std::nullopt;
    if (!line) {
        return {{name, State::fail, "it doesn't answer: " + answer.text,
                 "End it and start it once more."}};
    }
    return {{name, State::ok, *line}};
}

} // namespace orlune
