// Whether the desktop lets this program see its shortcut and paste, where the user has to agree to
// that in the desktop's own dialogs. Main thread.
#pragma once

#include "platform/Accessibility.h"
#include "platform/linux/keys/ShortcutSource.h"
#include "platform/linux/paste/KeyInjector.h"

#include <functional>
#include <string>

namespace orlune {

class ConsentAccessibility final : public Accessibility {
  public:
    /// Shows `reason` to the user and returns at once.
    using Prompt = std::function<void(const std::string& reason)>;

    /// `source` may be null: the user bound a command to a key of the desktop. Both facilities
    /// outlive this object. Whoever observes the source calls `sourceChanged`.
    ConsentAccessibility(ShortcutSource* source, KeyInjector& injector, Prompt prompt);
    ~ConsentAccessibility() override;

    bool isProcessTrusted() override;
    /// With `prompt`, opens the desktop's dialogs, one after the other, and says what they ask.
    bool isProcessTrustedWithOptions(bool prompt) override;
    std::string reasonForDistrust() override;

    void sourceChanged();

  private:
    std::string reasonOfSource() const;

    ShortcutSource* source_;
    KeyInjector& injector_;
    Prompt prompt_;
    /// The shortcut's dialog is open, and the one for pasting comes next.
    bool isAskingForShortcut_ = false;
};

} // namespace orlune
