#include "tests/desktop/RunningOrlune.h"

#include "tests/desktop/Desktop.h"

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

#include <stdexcept>

namespace orlune::desktop {

namespace {

/// It takes its time over the last words, so that "Finishing" is seen.
std::string script() {
    return std::string(R"({"steps": [{"waitForText": "CloseStream"}, {"wait": 0.7}, {"final": ")")
           + RunningOrlune::understoodWords + R"("}, {"metadata": 1}, {"close": 1000}]})";
}

} // namespace

RunningOrlune::RunningOrlune() {
    OwnProgram setting({ORLUNE_PROGRAM, "key", "set"});
    setting.type("any-key\n");
    if (setting.exitCode() != 0) {
        throw std::runtime_error("no key could be stored: " + setting.standardError());
    }
    const auto file = folder_.path() / "script.json";
    test::write(file, script());
    service_ = std::make_unique<OwnProgram>(std::vector<std::string>{
        ORLUNE_LOCAL_SERVICE, "--exit-with-parent", "--script", file.string()});
    if (!waitUntil([&] { return (address_ = service_->standardOutput()).ends_with('\n'); })) {
        throw std::runtime_error("the speech service did not start: " + service_->standardError());
    }
    address_.pop_back();
    start();
}

RunningOrlune::~RunningOrlune() {
    OwnProgram({ORLUNE_PROGRAM, "key", "remove"}).exitCode();
}

void RunningOrlune::start() {
    program_ =
        std::make_unique<OwnProgram>(std::vector<std::string>{ORLUNE_PROGRAM, "--background"},
                                     OwnProgram::Environment{{"XDG_CONFIG_HOME", folder_.path()},
                                                             {"ORLUNE_ENDPOINT", address_}});
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
                                       << program_->standardError() << service_->standardError();
}

std::string activeWindowTitle() {
    // Windows come and go while they are asked about.
    auto title = run({"sh", "-c", "xdotool getactivewindow getwindowname 2>/dev/null"});
    return title.substr(0, title.find('\n'));
}

} // namespace orlune::desktop
