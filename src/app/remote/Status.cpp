#include "app/remote/Status.h"

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value_to.hpp>

namespace orlune {

namespace json = boost::json;

namespace {

const char* nameOf(AppState::Phase::Case phase) {
    using Case = AppState::Phase::Case;
    switch (phase) {
    case Case::idle:
        return "idle";
    case Case::listening:
        return "listening";
    case Case::processing:
        return "processing";
    case Case::reviewing:
        return "reviewing";
    case Case::success:
        return "success";
    case Case::failure:
        return "failure";
    }
    return "";
}

} // namespace

std::string statusJson(const AppState& state) {
    const auto& phase = state.phase().get();
    json::object object;
    object["phase"] = nameOf(phase.kind());
    object["message"] = phase.message() ? json::value(*phase.message()) : json::value(nullptr);
    object["statusMessage"] = state.statusMessage().get();
    object["activationMode"] = rawValue(state.activationMode().get());
    object["shortcut"] = state.shortcut().get().displayName();
    object["enabled"] = state.isEnabled().get();
    object["intentCheckEnabled"] = state.intentCheckEnabled().get();
    object["hasDeepgramAPIKey"] = state.hasDeepgramAPIKey().get();
    object["version"] = ORLUNE_VERSION;
    return json::serialize(object);
}

std::optional<std::string> statusLine(std::string_view text) {
    boost::system::error_code error;
    const auto document = json::parse(text, error);
    const auto* object = document.if_object();
    if (error || !object) {
        return std::nullopt;
    }
    const auto member = [object](const char* name) { return object->if_contains(name); };
    const auto isFalse = [&](const char* name) {
        const auto* value = member(name);
        return value && value->is_bool() && !value->get_bool();
    };
    const auto* phase = member("phase");
    const auto* message = member("statusMessage");
    if (!phase || !phase->is_string() || !message || !message->is_string()) {
        return std::nullopt;
    }
    auto line = json::value_to<std::string>(*phase) + ": " + json::value_to<std::string>(*message);
    if (isFalse("enabled")) {
        line += " (switched off)";
    }
    if (isFalse("hasDeepgramAPIKey")) {
        line += " (no Deepgram API key)";
    }
    return line;
}

} // namespace orlune
