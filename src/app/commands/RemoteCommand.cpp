#include "app/commands/RemoteCommand.h"

#include "app/remote/Status.h"
#include "platform/linux/session/SessionBus.h"

#include <cstdio>

namespace orlune {

namespace {

using Kind = SessionBus::Answer::Kind;

constexpr SessionBus::Address runningInstance{busName, busPath, busInterface};
constexpr SessionBus::Address launchAddress{busName, busPath, applicationInterface};

int failed(const std::string& reason) {
    std::fprintf(stderr, "orlune: %s\n", reason.c_str());
    return exitFailed;
}

/// The text of the answer; none after a failure, which has been printed.
std::optional<std::string> ask(const char* method) {
    const auto bus = SessionBus::open();
    if (!bus) {
        failed("there is no session bus here, so a running Orlune can't be reached");
        return std::nullopt;
    }
    auto answer = bus->call(runningInstance, method);
    switch (answer.kind) {
    case Kind::answered:
        return std::move(answer.text);
    case Kind::nobodyThere:
        failed("Orlune isn't running; \"orlune\" without a command starts it");
        break;
    case Kind::refused:
        failed(answer.text);
        break;
    case Kind::failed:
        failed("Orlune doesn't answer: " + answer.text);
        break;
    }
    return std::nullopt;
}

} // namespace

int runRemoteCommand(const RemoteOptions& options) {
    return ask(busMethod(options.request).c_str()) ? exitDone : exitFailed;
}

int runStatusCommand(const StatusOptions& options) {
    const auto json = ask("Status");
    if (!json) {
        return exitFailed;
    }
    const auto text = options.isJson ? json : statusLine(*json);
    if (!text) {
        return failed("Orlune's answer can't be understood: is another version running?");
    }
    std::puts(text->c_str());
    return exitDone;
}

void announceKeyChange() {
    if (const auto bus = SessionBus::open()) {
        bus->tell(runningInstance, keyChangedMethod);
    }
}

std::optional<int> reopenRunningInstance() {
    const auto bus = SessionBus::open();
    if (!bus) {
        return std::nullopt;
    }
    const auto answer =
        bus->call(launchAddress, "Activate", SessionBus::Arguments::emptyDictionary);
    switch (answer.kind) {
    case Kind::answered:
        return exitDone;
    case Kind::nobodyThere:
        return std::nullopt;
    case Kind::refused:
    case Kind::failed:
        break;
    }
    return failed("Orlune is running already, but doesn't answer: " + answer.text);
}

} // namespace orlune
