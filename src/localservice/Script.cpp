#include "localservice/Script.h"

#include "localservice/ScriptStep.h"

#include <boost/json/array.hpp>
#include <boost/json/parse.hpp>

#include <fstream>
#include <iterator>

namespace orlune::localservice {
namespace {

namespace json = boost::json;

Script::Opening openingNamed(const std::string& name, const ScriptMembers& members) {
    if (name == "accept") {
        return Script::Opening::accept;
    }
    if (name == "silent") {
        return Script::Opening::silent;
    }
    if (name == "drop") {
        return Script::Opening::drop;
    }
    if (name == "reset") {
        return Script::Opening::reset;
    }
    members.fail("\"opening\" must be \"accept\", \"silent\", \"drop\" or \"reset\"");
}

bool isHeaderText(std::string_view text) {
    return text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

bool isHeaderName(std::string_view text) {
    constexpr std::string_view allowed =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-";
    return !text.empty() && text.find_first_not_of(allowed) == std::string_view::npos;
}

Script::Refuse parseRefuse(const json::value& value) {
    ScriptMembers members(value, "refuse");
    const auto status = members.takeCount("status", 200, 599);
    if (!status) {
        members.fail("a \"status\" is needed");
    }
    Script::Refuse refuse{
        .refusal = {.status = static_cast<unsigned>(*status),
                    .code = members.takeString("code").value_or("REFUSED"),
                    .message = members.takeString("message").value_or("Refused.")},
        .body = members.takeString("body"),
        .chunked = members.takeBoolean("chunked").value_or(false),
        .headers = {}};
    if (!isHeaderText(refuse.refusal.message)) {
        members.fail("\"message\" must be one line, because it is sent as a header too");
    }
    if (const auto* headers = members.take("headers")) {
        if (!headers->is_object()) {
            members.fail("\"headers\" must be an object");
        }
        for (const auto& header : headers->get_object()) {
            if (!header.value().is_string() || !isHeaderText(header.value().get_string())
                || !isHeaderName(header.key())) {
                members.fail(
                    "a header has a name of letters, digits and hyphens and one line of text");
            }
            refuse.headers.emplace_back(header.key(), std::string(header.value().get_string()));
        }
    }
    members.requireEmpty();
    return refuse;
}

std::vector<Script::Step> parseSteps(const json::value& value, const ScriptMembers& members) {
    if (!value.is_array()) {
        members.fail("\"steps\" must be a list");
    }
    std::vector<Script::Step> steps;
    std::size_t bytes = 0;
    for (const auto& element : value.get_array()) {
        const auto place = "step " + std::to_string(steps.size() + 1);
        steps.push_back(parseScriptStep(element, place));
        if (const auto* write = std::get_if<Script::Write>(&steps.back())) {
            bytes += write->bytes.size();
        }
        if (bytes > mostScriptBytes) {
            throw ScriptError(place + ": the script writes more than 64 MiB.");
        }
    }
    return steps;
}

} // namespace

Script Script::parse(std::string_view text) {
    boost::system::error_code error;
    const auto value = json::parse(text, error);
    if (error) {
        throw ScriptError("script: this is not JSON (" + error.message() + ").");
    }
    ScriptMembers members(value, "script");
    Script script;
    members.takeString("about");
    if (const auto opening = members.takeString("opening")) {
        script.opening = openingNamed(*opening, members);
    }
    script.openingDelay = members.takeSeconds("openingDelay").value_or(Duration(0));
    if (const auto size = members.takeCount("receiveBuffer", 1024, std::size_t{16} << 20U)) {
        script.receiveBuffer = static_cast<int>(*size);
    }
    if (const auto* refuse = members.take("refuse")) {
        script.refuse = parseRefuse(*refuse);
    }
    if (const auto* steps = members.take("steps")) {
        script.steps = parseSteps(*steps, members);
    }
    members.requireEmpty();
    return script;
}

Script Script::load(const std::filesystem::path& file) {
    std::error_code ignored;
    const bool isFolder = std::filesystem::is_directory(file, ignored);
    std::ifstream stream(file, std::ios::binary);
    if (!stream || isFolder) {
        throw ScriptError("The script " + file.string() + " cannot be read.");
    }
    const std::string text((std::istreambuf_iterator<char>(stream)), {});
    return parse(text);
}

} // namespace orlune::localservice
