#include "platform/memory/MemoryAccessibility.h"

namespace orlune {

bool MemoryAccessibility::isProcessTrustedWithOptions(bool prompt) {
    if (prompt && !reason.empty()) {
        log_->push_back("prompt");
    }
    return reason.empty();
}

} // namespace orlune
