// Whether the desktop's settings ask for less movement: its accessibility setting, GNOME's switch
// for animations, or KDE's animation speed. Read when first needed; until the answer arrives, and
// on desktops without such a setting, everything moves. Main thread, with Qt's loop running.
#pragma once

#include "platform/DisplayOptions.h"

#include <memory>
#include <optional>

class QString;
class QVariant;

namespace orlune {

class PortalSettings;

class DesktopDisplayOptions final : public DisplayOptions, private ObservableObject {
  public:
    /// A given value replaces the desktop's settings, which are not read then.
    explicit DesktopDisplayOptions(std::optional<bool> shouldReduceMotion = std::nullopt);
    ~DesktopDisplayOptions() override;

    const Published<bool>& shouldReduceMotion() const override;

  private:
    void read(const QString& group, const QString& key, const QVariant& value);

    bool isGiven_;
    Published<bool> shouldReduceMotion_;
    bool prefersLessMotion_ = false;
    bool hasAnimations_ = true;
    bool areAnimationsInstant_ = false;
    mutable std::unique_ptr<PortalSettings> settings_; ///< created on first use
};

} // namespace orlune
