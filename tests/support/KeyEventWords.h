// Key events as text that a test can compare: "flags 56 shift+fn", "down 0 shift", "again 0", "up
// 0".
#pragma once

#include "platform/KeyEvents.h"

#include <string>
#include <utility>

namespace orlune {

inline std::string describe(const KeyEvent& event) {
    using Type = KeyEvent::Type;
    std::string text = event.type == Type::keyUp          ? "up "
                       : event.type == Type::flagsChanged ? "flags "
                       : event.isARepeat                  ? "again "
                                                          : "down ";
    text += std::to_string(event.keyCode);
    std::string separator = " ";
    for (const auto& [flag, name] :
         {std::pair(ModifierFlags::control, "control"), std::pair(ModifierFlags::option, "option"),
          std::pair(ModifierFlags::shift, "shift"), std::pair(ModifierFlags::command, "command"),
          std::pair(ModifierFlags::function, "fn")}) {
        if (contains(event.modifierFlags, flag)) {
            text += std::exchange(separator, "+") + name;
        }
    }
    return text;
}

} // namespace orlune
