// Puts finished text into the program that the user is working in: copies it to the pasteboard and
// pastes it with a synthetic Command-V. A value that refers to facilities of the platform, which
// must outlive it. Main actor; no callbacks. Failures throw `InsertionError`, whose text is for the
// user.
#pragma once

#include "platform/Accessibility.h"
#include "platform/KeyEventPosting.h"
#include "platform/Pasteboard.h"

#include <cstddef>
#include <exception>
#include <functional>
#include <string>

namespace orlune {

class TextInsertionService {
  public:
    class InsertionError final : public std::exception {
      public:
        enum class Case {
            accessibilityPermission,
            eventCreation,
        };

        explicit InsertionError(Case errorCase) : errorCase_(errorCase) {}

        Case errorCase() const { return errorCase_; }
        const char* what() const noexcept override;

        friend bool operator==(const InsertionError& left, const InsertionError& right) {
            return left.errorCase_ == right.errorCase_;
        }

      private:
        Case errorCase_;
    };

    TextInsertionService(Accessibility& accessibility, Pasteboard& pasteboard,
                         KeyEventPosting& keyEvents)
        : accessibility_(&accessibility), pasteboard_(&pasteboard), keyEvents_(&keyEvents) {}

    /// Replaces the pasteboard's contents with `text` (UTF-8), which stays there, and posts the
    /// paste. Returns before the target has pasted and does not observe whether it does.
    /// Throws `accessibilityPermission` when keys cannot be posted in this session, after asking
    /// for the prompt and without touching the pasteboard. Throws `eventCreation` when the text or
    /// the keys could not be handed over.
    void insert(const std::string& text) const;

  private:
    Accessibility* accessibility_;
    Pasteboard* pasteboard_;
    KeyEventPosting* keyEvents_;
};

} // namespace orlune

template <>
struct std::hash<orlune::TextInsertionService::InsertionError> {
    std::size_t
    operator()(const orlune::TextInsertionService::InsertionError& error) const noexcept {
        return static_cast<std::size_t>(error.errorCase());
    }
};
