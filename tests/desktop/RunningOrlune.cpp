#include "tests/desktop/RunningOrlune.h"

#include "tests/desktop/Desktop.h"

#include <stdexcept>
#include <vector>

namespace orlune::desktop {

RunningOrlune::RunningOrlune(double pause) : service_(key, understoodWords, pause) {
    const auto setting = outcome({"key", "set"}, {}, std::string(key) + '\n');
    if (setting.exitCode != 0) {
        throw std::runtime_error("no key could be stored: " + setting.error);
    }
}

RunningOrlune::~RunningOrlune() {
    outcome({"key", "remove"});
}

void RunningOrlune::start() {
    auto environment = service_.clientEnvironment();
    environment["XDG_CONFIG_HOME"] = folder_.path();
    program_.emplace(std::vector<std::string>{ORLUNE_PROGRAM, "--background"}, environment);
    EXPECT_TRUE(reaches("idle"));
}

void RunningOrlune::restart() {
    EXPECT_TRUE(does("quit"));
    EXPECT_EQ(program_->exitCode(), 0) << program_->standardError();
    start();
}

bool RunningOrlune::does(const std::string& command) {
    return outcome({command}).exitCode == 0;
}

testing::AssertionResult RunningOrlune::reaches(const std::string& phase) {
    if (desktop::reaches(phase)) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "it is " << run({ORLUNE_PROGRAM, "status"})
                                       << program_->standardError() << service_.outputs();
}

std::string activeWindowTitle() {
    // Windows may vanish during the query.
    auto title = run({"sh", "-c", "xdotool getactivewindow getwindowname 2>/dev/null"});
    return title.substr(0, title.find('\n'));
}

} // namespace orlune::desktop
