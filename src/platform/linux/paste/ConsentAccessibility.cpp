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
        isAskingForShortcut_ = source_ && !source_->reasonForUnavailability().empty();
        if (isAskingForShortcut_) {
            source_->requestAccess();
        } else {
            injector_.requestAccess();
        }
    }
    return reason.empty();
}

std::string ConsentAccessibility::reasonForDistrust() {
    const auto reason = source_ ? source_->reasonForUnavailability() : std::string();
    return reason.empty() ? injector_.reasonForUnavailability() : reason;
}

void ConsentAccessibility::sourceChanged() {
    if (isAskingForShortcut_ && source_->reasonForUnavailability().empty()) {
        isAskingForShortcut_ = false;
        if (!injector_.reasonForUnavailability().empty()) {
            injector_.requestAccess();
        }
    }
}

} // namespace orlune
