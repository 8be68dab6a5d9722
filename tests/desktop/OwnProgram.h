// One of this project's own programs beside a test, with its standard input and what it writes in
// the test's hands. Main thread; waiting turns Qt's loop. Killed with its owner.
#pragma once

#include <QProcess>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlune::desktop {

class OwnProgram {
  public:
    using Environment = std::map<std::string, std::string>;

    /// `changes` are made to this process's own environment.
    explicit OwnProgram(const std::vector<std::string>& command, const Environment& changes = {});
    ~OwnProgram();
    OwnProgram(const OwnProgram&) = delete;
    OwnProgram& operator=(const OwnProgram&) = delete;

    /// Standard input and standard error become this terminal instead, and the program its
    /// foreground. Given by the descriptor of the terminal's own end.
    struct OnTerminal {
        int descriptor;
    };
    OwnProgram(const std::vector<std::string>& command, OnTerminal terminal);

    void type(std::string_view input);
    void closeInput() { process_.closeWriteChannel(); }
    void signal(int number) const;

    /// False when the text has not been written within the deadline of `waitUntil`, or the program
    /// has ended without it.
    [[nodiscard]] bool says(std::string_view text);
    /// Waits for the end. None when it does not come, or was a crash.
    std::optional<int> exitCode();

    std::string standardOutput() {
        return output_ += process_.readAllStandardOutput().toStdString();
    }
    std::string standardError() { return error_ += process_.readAllStandardError().toStdString(); }
    qint64 processID() const { return process_.processId(); }

    /// The system's view of the running program that every user of the machine may have: its
    /// command line, and its environment for its own user.
    std::string visibleToOthers() const;

  private:
    void start(const std::vector<std::string>& command);

    QProcess process_;
    std::string output_;
    std::string error_;
};

} // namespace orlune::desktop
