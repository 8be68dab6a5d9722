#include "tests/desktop/Commands.h"

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

#include <stdexcept>

namespace orlune::desktop {

Outcome outcome(std::vector<std::string> arguments, const OwnProgram::Environment& changes,
                std::string_view input) {
    arguments.insert(arguments.begin(), ORLUNE_PROGRAM);
    OwnProgram program(arguments, changes);
    program.type(input);
    program.closeInput();
    const auto code = program.exitCode();
    return {code, program.standardOutput(), program.standardError()};
}

std::string status(const std::string& option) {
    return outcome({"status", option}).output;
}

std::string statusMember(const std::string& name) {
    const auto text = status();
    if (text.empty()) {
        return "none";
    }
    const auto value = boost::json::parse(text).at(name);
    return value.is_string() ? std::string(value.get_string()) : boost::json::serialize(value);
}

std::string phase() {
    return statusMember("phase");
}

bool reaches(const std::string& phase) {
    return waitUntil([&] { return desktop::phase() == phase; });
}

Terminal::Terminal(const std::vector<std::string>& options) {
    std::vector<std::string> command{"xterm"};
    command.insert(command.end(), options.begin(), options.end());
    command.insert(command.end(),
                   {"-e", "sh", "-c", "stty -icanon -echo; exec cat > " + file().string()});
    program_.emplace(command);
    if (!waitUntil([this] { return std::filesystem::exists(file()) && isFocused(); })) {
        throw std::runtime_error("no terminal has the keyboard");
    }
}

} // namespace orlune::desktop
