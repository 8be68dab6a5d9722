// Opens addresses in the programs that the desktop has assigned to them. Main thread; does not wait
// for the program. Does nothing when the program runs without windows.
#pragma once

#include "platform/UrlOpener.h"

namespace orlune {

class DesktopUrlOpener final : public UrlOpener {
  public:
    bool open(std::string_view url) override;
};

} // namespace orlune
