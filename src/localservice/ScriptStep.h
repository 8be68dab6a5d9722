#pragma once

// Reads the steps of a script. Only used by Script::parse; free functions on values, safe on any
// thread. An invalid step throws ScriptError, whose text begins with its place ("step 3: ...").

#include "localservice/Script.h"

#include <boost/json/object.hpp>

namespace orlune::localservice {

/// More would only fill the service's memory.
constexpr std::size_t mostScriptBytes = std::size_t{64} << 20U;

/// The members of one JSON object, taken one by one, so that unknown names are detected.
class ScriptMembers {
  public:
    /// Every error begins with `place`, for example "step 3".
    ScriptMembers(const boost::json::value& value, std::string place);

    bool has(std::string_view name) const { return object_.contains(name); }
    const boost::json::value* take(std::string_view name);
    std::optional<std::string> takeString(std::string_view name);
    std::optional<bool> takeBoolean(std::string_view name);
    /// Between `least` and `most`, both included.
    std::optional<double> takeNumber(std::string_view name, double least, double most);
    std::optional<std::size_t> takeCount(std::string_view name, std::size_t least,
                                         std::size_t most);
    std::optional<Script::Duration> takeSeconds(std::string_view name);
    /// Throws for the first member that was not taken.
    void requireEmpty() const;
    [[noreturn]] void fail(const std::string& complaint) const;
    const std::string& place() const { return place_; }

  private:
    boost::json::object object_;
    boost::json::value taken_;
    std::string place_;
};

Script::Step parseScriptStep(const boost::json::value& value, const std::string& place);

} // namespace orlune::localservice
