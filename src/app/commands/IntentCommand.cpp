#include "app/commands/IntentCommand.h"

#include "app/commands/TerminalView.h"

#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

#include <istream>
#include <iterator>
#include <ostream>

namespace orlune {

std::string json(const IntentCheck& check) {
    boost::json::object object;
    object["goal"] = check.goal;
    object["requirements"] =
        boost::json::array(check.requirements.begin(), check.requirements.end());
    object["potentialGap"] =
        check.potentialGap ? boost::json::value(*check.potentialGap) : boost::json::value(nullptr);
    object["originalTranscript"] = check.originalTranscript;
    object["formattedInstruction"] = check.formattedInstruction();
    return boost::json::serialize(object);
}

int runIntentCommand(const IntentOptions& options, std::istream& input, std::ostream& output) {
    const std::string text{std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
    const auto check = IntentCheckBuilder::build(text);
    output << (options.isJson ? json(check) + "\n" : readable(check)) << std::flush;
    return output ? exitDone : exitFailed;
}

} // namespace orlune
