// A custom shortcut in GNOME's keyboard settings that runs a command: how a key reaches a program
// where the desktop has no portal for shortcuts (GNOME 43 to 47). Written only after
// `requestAccess`; an entry that is there has been agreed to, and follows the program's shortcut
// from then on. None is needed where the user has bound a command of ours by hand. Reports no keys:
// the desktop runs `orlune press`. Main thread, with Qt's loop running.
#pragma once

#include "platform/linux/keys/ShortcutSource.h"

#include <memory>
#include <optional>
#include <string>

namespace orlune {

class GnomeCustomShortcut final : public ShortcutSource {
  public:
    /// What the desktop runs. Repeated while the key is held, and not told its release.
    static constexpr auto command = "orlune press";

    /// None when these settings are not installed, or nobody follows them on this bus.
    static std::unique_ptr<GnomeCustomShortcut> open(std::string functionKey);
    /// For settings that somebody is known to follow; none when they are not installed.
    static std::unique_ptr<GnomeCustomShortcut> openSettings(std::string functionKey);
    ~GnomeCustomShortcut() override;

    std::string name() const override { return "a custom shortcut of GNOME"; }
    void setObserver(Observer observer) override { observer_ = std::move(observer); }
    void watch(const KeyCombination& shortcut) override;
    void watchEscape(bool /*isWanted*/) override {}
    void requestAccess() override;
    std::string reasonForUnavailability() const override { return reason_; }
    bool reportsReleases() const override { return false; }
    void releaseAll() override {}

  private:
    class Settings;

    GnomeCustomShortcut(std::unique_ptr<Settings> settings, std::string functionKey);
    void judge();

    std::unique_ptr<Settings> settings_;
    std::string functionKey_;
    Observer observer_;
    std::optional<std::string> accelerator_; ///< none before `watch`, and when there is none
    std::string reason_;
};

} // namespace orlune
