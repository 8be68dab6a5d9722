// A separate PulseAudio server in temporary folders, without hardware; it does not touch the user's
// session. While it exists, this process and its children only find this server. Needs pulseaudio
// and its utilities; also works for root in a container. All its programs end with it.
#pragma once

#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <span>
#include <string>
#include <vector>

namespace orlune::test {

class PulseServer {
  public:
    /// Does not start a server yet. Throws, like all operations here, on failure.
    PulseServer();

    /// Starts the server without devices and waits until it answers.
    void start();
    /// Kills it, which simulates a crash.
    void kill();
    /// Pauses the server, whatever it is doing, and resumes it.
    void freeze() const { process_.signal(SIGSTOP); }
    void thaw() const { process_.signal(SIGCONT); }

    /// Sends a command to the server and returns the answer, or throws with it.
    std::string control(const std::string& arguments) const;

    /// Loads a module and returns its index.
    std::string load(const std::string& module) const { return control("load-module " + module); }
    void unload(const std::string& index) const { control("unload-module " + index); }

    /// Makes an output whose monitor serves as a microphone, and makes this the default source.
    std::string addMicrophone(const std::string& name, int sampleRate, int channels) const;

    /// Plays samples of this layout into an output until they end or the player is destroyed.
    ChildProcess play(const std::string& output, std::span<const float> interleaved, int sampleRate,
                      int channels) const;

  private:
    TemporaryFolder folder_;
    ChildProcess process_;
};

} // namespace orlune::test
