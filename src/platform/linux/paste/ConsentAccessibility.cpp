#include "platform/linux/paste/ConsentAccessibility.h"

#include <utility>

namespace orlune {

ConsentAccessibility::ConsentAccessibility(ShortcutSource* source, KeyInjector& injector,
                                           Prompt prompt)
    : source_(source), injector_(injector), prompt_(std::move(prompt)) {}

ConsentAccessibility::~ConsentAccessibility() = default;

bool ConsentAccessibility::isProcessTrusted() {
    return reasonForDistrust().empty();
}

bool ConsentAccessibility::isProcessTrustedWithOptions(bool prompt) {
    const auto reason = reasonForDistrust();
    if (prompt && !reason.empty()) {
        if (prompt_) {
            prompt_(reason);
        }
        isAskingForShortcut_ = !reasonOfSource().empty();
        if (isAskingForShortcut_) {
            source_->requestAccess();
        } else {
            injector_.requestAccess();
        }
    }
    return reason.empty();
}

std::string ConsentAccessibility::reasonForDistrust() {
    const auto reason = reasonOfSource();
    return reason.empty() ? injector_.reasonForUnavailability() : reason;
}

/// Where the source is missing, the user has bound a command to a key of the desktop.
std::string ConsentAccessibility::reasonOfSource() const {
    return source_ && !source_->isMissing() ? source_->reasonForUnavailability() : std::string();
}

void ConsentAccessibility::sourceChanged() {
    if (isAskingForShortcut_ && reasonOfSource().empty()) {
        isAskingForShortcut_ = false;
        if (!injector_.reasonForUnavailability().empty()) {
            injector_.requestAccess();
        }
    }
}

} // namespace orlune
