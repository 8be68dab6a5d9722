// The user in a terminal next to the running program: the commands of `orlune`, and a window that
// records what is typed into it. Main thread; waiting runs Qt's loop.
#pragma once

#include "tests/desktop/Desktop.h"
#include "tests/desktop/OwnProgram.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlune::desktop {

struct Outcome {
    std::optional<int> exitCode;
    std::string output;
    std::string error;
};

/// Runs `orlune` with these arguments to its end.
Outcome outcome(std::vector<std::string> arguments, const OwnProgram::Environment& changes = {},
                std::string_view input = {});

/// The output of `orlune status`; with `--json` one member of it, as text, or "none" while no
/// program runs.
std::string status(const std::string& option = "--json");
std::string statusMember(const std::string& name);
std::string phase();
/// Whether the phase becomes this one within the deadline of `waitUntil`.
[[nodiscard]] bool reaches(const std::string& phase);

/// A terminal that has the keyboard focus and records what is typed.
class Terminal {
  public:
    explicit Terminal(const std::vector<std::string>& options = {});

    static bool isFocused() { return focusedClass() == "XTerm"; }
    std::string typed() const { return test::textOf(file()); }

  private:
    std::filesystem::path file() const { return folder_.path() / "typed"; }

    test::TemporaryFolder folder_;
    std::optional<Program> program_;
};

} // namespace orlune::desktop
