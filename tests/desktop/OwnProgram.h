// One of this project's own programs, with access to its standard input and its output. Main
// thread; waiting runs Qt's loop. Killed with its owner.
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

    /// `changes` modify a copy of this process's environment.
    explicit OwnProgram(const std::vector<std::string>& command, const Environment& changes = {});
    ~OwnProgram();
    OwnProgram(const OwnProgram&) = delete;
    OwnProgram& operator=(const OwnProgram&) = delete;

    /// This terminal replaces standard input and standard error, and the program becomes its
    /// foreground process. Given by the descriptor of the terminal's slave side.
    struct OnTerminal {
        int descriptor;
    };
    OwnProgram(const std::vector<std::string>& command, OnTerminal terminal);

    void type(std::string_view input);
    void closeInput() { process_.closeWriteChannel(); }
    void signal(int number) const;

    /// False when the text is not written within the deadline of `waitUntil`, or the program ends
    /// without writing it.
    [[nodiscard]] bool says(std::string_view text);
    /// Waits for the end. None on timeout or after a crash.
    std::optional<int> exitCode();

    std::string standardOutput() {
        return output_ += process_.readAllStandardOutput().toStdString();
    }
    std::string standardError() { return error_ += process_.readAllStandardError().toStdString(); }

    /// What other users of the machine can see of the running program: its command line, and its
    /// environment for its own user.
    std::string visibleToOthers() const;

  private:
    void start(const std::vector<std::string>& command);

    QProcess process_;
    std::string output_;
    std::string error_;
};

} // namespace orlune::desktop
