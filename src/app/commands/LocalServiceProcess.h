// The speech service on this machine as a child process, for a dictation without key and network.
// Ends with its owner, even when the owner is killed: the child watches its standard input.
#pragma once

#include <QProcess>

#include <string>

namespace orlune {

class LocalServiceProcess {
  public:
    LocalServiceProcess() = default;
    ~LocalServiceProcess();
    LocalServiceProcess(const LocalServiceProcess&) = delete;
    LocalServiceProcess& operator=(const LocalServiceProcess&) = delete;

    /// Starts the service and waits until it listens. Its model takes about a second to load; on a
    /// loaded machine it may take up to 30 s. Returns its address ("ws://127.0.0.1:port"). Throws
    /// std::runtime_error with a text for the user.
    std::string start();

  private:
    QProcess process_;
};

} // namespace orlune
