// Opens addresses in the user's preferred programs. Main thread; returns at once.
#pragma once

#include <string_view>

namespace orlune {

class UrlOpener {
  public:
    virtual ~UrlOpener() = default;

    /// False when no program could be started.
    virtual bool open(std::string_view url) = 0;
};

} // namespace orlune
