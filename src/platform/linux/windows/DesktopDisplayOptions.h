// Whether the desktop's settings ask for less movement: those of its accessibility, GNOME's switch
// for animations, or the speed of KDE's. Asked for when it is first needed; until the answer is in,
// and on desktops without such a setting, everything moves. Main thread, with Qt's loop running.
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
    /// What is given stands in the place of the desktop's settings, which then are not read.
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
    mutable std::unique_ptr<PortalSettings> settings_; ///< from the first question on
};

} // namespace orlune
