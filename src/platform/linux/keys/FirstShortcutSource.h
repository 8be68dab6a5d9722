// Two shortcut sources of which the second takes over when the desktop turns out not to offer the
// first. Main thread.
#pragma once

#include "platform/linux/keys/ShortcutSource.h"

#include <memory>

namespace orlune {

class FirstShortcutSource final : public ShortcutSource {
  public:
    FirstShortcutSource(std::unique_ptr<ShortcutSource> first,
                        std::unique_ptr<ShortcutSource> second)
        : first_(std::move(first)), second_(std::move(second)) {}

    std::string name() const override { return used().name(); }
    void setObserver(Observer observer) override {
        first_->setObserver(observer);
        second_->setObserver(std::move(observer));
    }
    void watch(const KeyCombination& shortcut) override {
        first_->watch(shortcut);
        second_->watch(shortcut);
    }
    void watchEscape(bool isWanted) override {
        first_->watchEscape(isWanted);
        second_->watchEscape(isWanted);
    }
    void requestAccess() override { used().requestAccess(); }
    std::string reasonForUnavailability() const override {
        return used().reasonForUnavailability();
    }
    bool reportsReleases() const override { return used().reportsReleases(); }
    void releaseAll() override { used().releaseAll(); }

  private:
    ShortcutSource& used() const { return first_->isMissing() ? *second_ : *first_; }

    std::unique_ptr<ShortcutSource> first_;
    std::unique_ptr<ShortcutSource> second_;
};

} // namespace orlune
