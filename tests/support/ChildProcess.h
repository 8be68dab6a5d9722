// Runs other programs during a test.
#pragma once

#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace orlune::test {

/// A program that runs next to the test and is killed with its owner.
class ChildProcess {
  public:
    ChildProcess() = default;
    /// `input` is its whole standard input.
    ChildProcess(const std::vector<std::string>& arguments,
                 const std::vector<std::string>& environment, std::string_view input = {});
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&& other) noexcept;
    ~ChildProcess();

    void signal(int number) const;
    bool isRunning();
    void kill();

  private:
    pid_t process_ = -1;
};

} // namespace orlune::test
