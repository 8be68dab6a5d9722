// Any bytes are refused or give a shortcut that survives being stored.
#include "core/DictationShortcut.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view json(reinterpret_cast<const char*>(data), size);
    if (const auto shortcut = orlune::DictationShortcut::decode(json)) {
        const bool isNamed = !shortcut->displayName().empty()
                             || (!shortcut->keyCode && shortcut->modifiers.rawValue() % 32 == 0);
        if (!isNamed || orlune::DictationShortcut::decode(shortcut->encode()) != shortcut) {
            std::abort();
        }
    }
    return 0;
}
