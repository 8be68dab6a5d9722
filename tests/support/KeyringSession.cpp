#include "tests/support/KeyringSession.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace orlune::test {

namespace {

using namespace std::chrono_literals;

constexpr auto startDeadline = 10s;

template <typename Condition>
void waitFor(const char* what, Condition condition) {
    const auto end = std::chrono::steady_clock::now() + startDeadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            throw std::runtime_error(std::string("waited in vain for ") + what);
        }
        std::this_thread::sleep_for(5ms);
    }
}

std::string outputOf(const std::vector<std::string>& arguments,
                     const std::vector<std::string>& environment) {
    std::string command = "env -i";
    for (const auto* words : {&environment, &arguments}) {
        for (const auto& word : *words) {
            command += " '" + word + "'";
        }
    }
    std::string output;
    if (FILE* stream = ::popen((command + " 2>&1").c_str(), "r")) {
        char buffer[4096];
        while (const auto count = std::fread(buffer, 1, sizeof buffer, stream)) {
            output.append(buffer, count);
        }
        ::pclose(stream);
    }
    return output;
}

bool accepts(const std::filesystem::path& socketPath) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    socketPath.native().copy(address.sun_path, sizeof address.sun_path - 1);
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool isAccepted =
        ::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(descriptor);
    return isAccepted;
}

} // namespace

KeyringSession::KeyringSession() : address_("unix:path=" + (folder_.path() / "bus").string()) {
    for (const auto* name : {"home", "data", "runtime"}) {
        std::filesystem::create_directory(folder_.path() / name);
        std::filesystem::permissions(folder_.path() / name, std::filesystem::perms::owner_all);
    }
    // Without a service folder nothing is started on demand: neither a provider nor a prompter.
    write(folder_.path() / "bus.conf",
          "<busconfig><type>session</type><listen>" + address_
              + "</listen><policy context='default'>"
                "<allow send_destination='*' eavesdrop='true'/>"
                "<allow eavesdrop='true'/><allow own='*'/></policy></busconfig>");
    startBus();
}

void KeyringSession::startBus() {
    // It ends with this process even when a test crashes, and the keyring ends with it.
    bus_ = ChildProcess({"setpriv", "--pdeathsig", "KILL", "dbus-daemon", "--nofork", "--nopidfile",
                         "--config-file=" + (folder_.path() / "bus.conf").string()},
                        environment());
    waitFor("the bus", [&] { return accepts(folder_.path() / "bus"); });
}

void KeyringSession::restartBus() {
    bus_.kill();
    keyring_.kill();
    std::filesystem::remove(folder_.path() / "bus");
    startBus();
}

void KeyringSession::startKeyring(std::optional<std::string_view> password) {
    std::vector<std::string> arguments = {"gnome-keyring-daemon", "--foreground",
                                          "--components=secrets"};
    if (password) {
        arguments.emplace_back("--unlock");
    }
    keyring_ = ChildProcess(arguments, environment(), password.value_or(""));
    waitFor("the keyring", [&] { return hasOwner(); });
}

void KeyringSession::stopKeyring() {
    keyring_.kill();
    waitFor("the end of the keyring", [&] { return !hasOwner(); });
}

void KeyringSession::freezeKeyring() const {
    keyring_.signal(SIGSTOP);
}

void KeyringSession::thawKeyring() const {
    keyring_.signal(SIGCONT);
}

int KeyringSession::countItems(std::string_view account) const {
    const auto output = outputOf(
        {"secret-tool", "search", "--all", "account", std::string(account)}, environment());
    int count = 0;
    for (auto position = output.find("label = "); position != std::string::npos;
         position = output.find("label = ", position + 1)) {
        ++count;
    }
    return count;
}

std::vector<std::string> KeyringSession::environment() const {
    const auto folder = folder_.path().string();
    const char* path = ::getenv("PATH");
    return {"PATH=" + std::string(path ? path : "/usr/bin:/bin"),
            "LC_ALL=C.UTF-8",
            "HOME=" + folder + "/home",
            "XDG_DATA_HOME=" + folder + "/data",
            "XDG_RUNTIME_DIR=" + folder + "/runtime",
            "DBUS_SESSION_BUS_ADDRESS=" + address_};
}

bool KeyringSession::hasOwner() const {
    const auto output =
        outputOf({"dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus",
                  "/org/freedesktop/DBus", "org.freedesktop.DBus.NameHasOwner",
                  "string:org.freedesktop.secrets"},
                 environment());
    return output.find("boolean true") != std::string::npos;
}

} // namespace orlune::test
