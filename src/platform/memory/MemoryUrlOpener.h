// Remembers the addresses instead of opening them.
#pragma once

#include "platform/UrlOpener.h"

#include <string>
#include <string_view>
#include <vector>

namespace orlune {

class MemoryUrlOpener final : public UrlOpener {
  public:
    bool open(std::string_view url) override {
        opened.emplace_back(url);
        return true;
    }

    std::vector<std::string> opened;
};

} // namespace orlune
