// The format of the user's settings file: one JSON object, one member per key. A boolean, an
// integer, a real number and a string are stored directly; data is {"data": "<base64>"}. Other
// values (null, arrays, other objects) were written by another version: they are preserved and read
// as absent. Pure functions, usable on any thread.
#pragma once

#include "platform/UserDefaults.h"

#include <boost/json/object.hpp>

#include <cstddef>
#include <optional>
#include <string_view>

namespace orlune {

/// A settings file has a few hundred bytes; anything larger than this is not one.
inline constexpr std::size_t largestDefaultsFileBytes = 1024 * 1024;

/// The members of a settings file; none when the text is not JSON, not an object, nested deeper
/// than 32 levels, or larger than `largestDefaultsFileBytes`. A number too large for a double
/// becomes the largest one.
std::optional<boost::json::object> parseDefaults(std::string_view text);
/// The text of a settings file, with one member per line for readability.
std::string serializeDefaults(const boost::json::object& members);

/// The typed value of a member; none when its shape matches no type.
std::optional<UserDefaults::Value> defaultsValue(const boost::json::value& member);
/// The member for a value; none for what the file cannot hold: text that is not UTF-8, a number
/// that is not finite.
std::optional<boost::json::value> defaultsMember(const UserDefaults::Value& value);

} // namespace orlune
