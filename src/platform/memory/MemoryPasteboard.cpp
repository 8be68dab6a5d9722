#include "platform/memory/MemoryPasteboard.h"

namespace orlune {

void MemoryPasteboard::clearContents() {
    contents_.reset();
    log_->push_back("clear");
}

bool MemoryPasteboard::setString(const std::string& text) {
    if (refuses) {
        return false;
    }
    contents_ = text;
    log_->push_back("set " + text);
    return true;
}

} // namespace orlune
