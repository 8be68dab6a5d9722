// Screens and a pointer that a test places.
#pragma once

#include "platform/Screens.h"

#include <optional>
#include <vector>

namespace orlune {

class MemoryScreens final : public Screens {
  public:
    Point pointerLocation() override { return pointer; }
    std::vector<Screen> all() override { return screens; }
    std::optional<Screen> main() override {
        return screens.empty() ? std::nullopt : std::optional(screens.front());
    }

    Point pointer;
    /// By default one screen with a panel of 30 units at its lower edge.
    std::vector<Screen> screens{{.frame = {0, 0, 1280, 800}, .visibleFrame = {0, 0, 1280, 770}}};
};

} // namespace orlune
