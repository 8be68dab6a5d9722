// The speech service of this machine as a child process, for a dictation without key and network.
// Ends with its owner, also when the owner is killed: the child watches its standard input.
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

    /// Starts the service and waits until it listens: its model takes about a second to load, and
    /// 30 s are allowed on a machine that is busy. Returns its address ("ws://127.0.0.1:port").
    /// Throws std::runtime_error with a text for a person.
    std::string start();

  private:
    QProcess process_;
};

} // namespace orlune
