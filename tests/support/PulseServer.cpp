#include "tests/support/PulseServer.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace orlune::test {

namespace {

using namespace std::chrono_literals;

constexpr auto startDeadline = 10s;

std::vector<std::string> currentEnvironment() {
    std::vector<std::string> environment;
    for (char** entry = environ; *entry; ++entry) {
        environment.emplace_back(*entry);
    }
    return environment;
}

/// The output of a command, and whether it succeeded.
std::pair<std::string, bool> run(const std::string& command) {
    std::string output;
    FILE* stream = ::popen((command + " 2>&1").c_str(), "r");
    if (!stream) {
        return {"no process", false};
    }
    char buffer[4096];
    while (const auto count = std::fread(buffer, 1, sizeof buffer, stream)) {
        output.append(buffer, count);
    }
    const bool succeeded = ::pclose(stream) == 0;
    while (output.ends_with('\n')) {
        output.pop_back();
    }
    return {output, succeeded};
}

} // namespace

PulseServer::PulseServer() {
    const auto folder = folder_.path().string();
    write(folder_.path() / "client.conf", "autospawn = no\nenable-shm = no\n");
    ::setenv("HOME", folder.c_str(), /*overwrite=*/1);
    ::setenv("XDG_RUNTIME_DIR", folder.c_str(), /*overwrite=*/1);
    ::setenv("XDG_CONFIG_HOME", folder.c_str(), /*overwrite=*/1);
    ::setenv("PULSE_CLIENTCONFIG", (folder + "/client.conf").c_str(), /*overwrite=*/1);
    for (const char* name : {"PULSE_SERVER", "PULSE_SOURCE", "PULSE_SINK", "PULSE_RUNTIME_PATH",
                             "DISPLAY", "DBUS_SESSION_BUS_ADDRESS"}) {
        ::unsetenv(name);
    }
}

void PulseServer::start() {
    // The server ends with this process even when a test crashes.
    process_ = ChildProcess({"setpriv", "--pdeathsig", "KILL", "pulseaudio", "-n", "--daemonize=no",
                             "--disallow-exit", "--exit-idle-time=-1", "--use-pid-file=no", "-L",
                             "module-native-protocol-unix"},
                            currentEnvironment());
    const auto end = std::chrono::steady_clock::now() + startDeadline;
    while (!run("pactl info").second) {
        if (std::chrono::steady_clock::now() > end || !process_.isRunning()) {
            throw std::runtime_error("the sound server did not start");
        }
        std::this_thread::sleep_for(5ms);
    }
}

void PulseServer::kill() {
    process_.kill();
}

std::string PulseServer::control(const std::string& arguments) const {
    auto [output, succeeded] = run("pactl " + arguments);
    if (!succeeded) {
        throw std::runtime_error("pactl " + arguments + ": " + output);
    }
    return output;
}

std::string PulseServer::addMicrophone(const std::string& name, int sampleRate,
                                       int channels) const {
    // Without "norewinds" the first sound takes two seconds.
    auto index = load("module-null-sink norewinds=1 sink_name=" + name + " rate="
                      + std::to_string(sampleRate) + " channels=" + std::to_string(channels));
    control("set-default-source " + name + ".monitor");
    return index;
}

ChildProcess PulseServer::play(const std::string& output, std::span<const float> interleaved,
                               int sampleRate, int channels) const {
    const auto file = folder_.path() / (output + ".raw");
    write(file, {reinterpret_cast<const char*>(interleaved.data()), interleaved.size_bytes()});
    return ChildProcess({"setpriv", "--pdeathsig", "KILL", "pacat", "--playback", "--raw",
                         "--format=float32le", "--latency-msec=50", "--device=" + output,
                         "--rate=" + std::to_string(sampleRate),
                         "--channels=" + std::to_string(channels), file.string()},
                        currentEnvironment());
}

} // namespace orlune::test
