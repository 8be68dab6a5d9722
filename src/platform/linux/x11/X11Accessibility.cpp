#include "platform/linux/x11/X11Accessibility.h"

#include "platform/linux/x11/KeyAccess.h"
#include "platform/linux/x11/XConnection.h"

#include <utility>

namespace orlune {

X11Accessibility::X11Accessibility(Prompt prompt, std::string displayName)
    : prompt_(std::move(prompt)), displayName_(std::move(displayName)) {}

X11Accessibility::~X11Accessibility() = default;

bool X11Accessibility::isProcessTrusted() {
    return reasonForDistrust().empty();
}

bool X11Accessibility::isProcessTrustedWithOptions(bool prompt) {
    const auto reason = reasonForDistrust();
    if (prompt && !reason.empty() && prompt_) {
        prompt_(reason);
    }
    return reason.empty();
}

std::string X11Accessibility::reasonForDistrust() {
    if (!connection_ || !connection_->roundTrip()) {
        connection_ = XConnection::open(displayName_);
        reasonOfConnection_ =
            connection_ ? missingKeyAccess(connection_->display()) : noDisplayReason;
    }
    return reasonOfConnection_;
}

} // namespace orlune
