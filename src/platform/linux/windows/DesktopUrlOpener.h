// Hands addresses to the programs that the desktop has for them. Main thread; does not wait for
// the program. Without windows of our own nothing is opened.
#pragma once

#include "platform/UrlOpener.h"

namespace orlune {

class DesktopUrlOpener final : public UrlOpener {
  public:
    bool open(std::string_view url) override;
};

} // namespace orlune
