// A PulseAudio server of its own in folders of its own, without any hardware: nothing of the user's
// session is touched. While it exists, this process and its children find this server and no other.
// Needs pulseaudio and its utilities; works for root in a container too. Everything it started ends
// with it.
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
    /// No server runs yet. Throws like every operation here when something does not come about.
    PulseServer();

    /// Starts the server with no devices at all and waits until it answers.
    void start();
    /// Kills it, as a crash would.
    void kill();
    /// Stops the server in the middle of whatever it does, and lets it go on.
    void freeze() const { process_.signal(SIGSTOP); }
    void thaw() const { process_.signal(SIGCONT); }

    /// Asks the server for something and returns the answer, or throws with it.
    std::string control(const std::string& arguments) const;

    /// Loads a module and returns its index.
    std::string load(const std::string& module) const { return control("load-module " + module); }
    void unload(const std::string& index) const { control("unload-module " + index); }

    /// Makes an output whose monitor serves as a microphone, and makes that the default source.
    std::string addMicrophone(const std::string& name, int sampleRate, int channels) const;

    /// Plays samples of the given layout into an output until the player is let go or they end.
    ChildProcess play(const std::string& output, std::span<const float> interleaved, int sampleRate,
                      int channels) const;

  private:
    TemporaryFolder folder_;
    ChildProcess process_;
};

} // namespace orlune::test
