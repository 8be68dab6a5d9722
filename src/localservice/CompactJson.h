#pragma once

// JSON text in the service's format: no spaces, numbers in plain decimals ("1.08", never "1.08E0").
// A free function, safe on any thread, which cannot fail.

#include <boost/json/value.hpp>

#include <string>

namespace orlune::localservice {

/// The value as one line. Members keep their order.
std::string compactJson(const boost::json::value& value);

} // namespace orlune::localservice
