#include "tests/desktop/RunningOrlune.h"

#include "tests/desktop/Desktop.h"

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

#include <stdexcept>
#include <vector>

namespace orlune::desktop {

RunningOrlune::RunningOrlune(double pause) : service_(key, understoodWords, pause) {
    OwnProgram setting({ORLUNE_PROGRAM, "key", "set"});
    setting.type(std::string(key) + '\n');
    if (setting.exitCode() != 0) {
        throw std::runtime_error("no key could be stored: " + setting.standardError());
    }
    start();
}

RunningOrlune::~RunningOrlune() {
    OwnProgram({ORLUNE_PROGRAM, "key", "remove"}).exitCode();
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
    return OwnProgram({ORLUNE_PROGRAM, command}).exitCode() == 0;
}

std::string RunningOrlune::status(const std::string& member) {
    OwnProgram asking({ORLUNE_PROGRAM, "status", "--json"});
    if (asking.exitCode() != 0) {
        return "none";
    }
    const auto value = boost::json::parse(asking.standardOutput()).at(member);
    return value.is_string() ? std::string(value.get_string()) : boost::json::serialize(value);
}

testing::AssertionResult RunningOrlune::reaches(const std::string& phase) {
    if (waitUntil([&] { return this->phase() == phase; })) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "it is " << run({ORLUNE_PROGRAM, "status"})
                                       << program_->standardError() << service_.outputs();
}

std::string activeWindowTitle() {
    // Windows come and go while they are asked about.
    auto title = run({"sh", "-c", "xdotool getactivewindow getwindowname 2>/dev/null"});
    return title.substr(0, title.find('\n'));
}

} // namespace orlune::desktop
