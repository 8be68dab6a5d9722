#include "platform/linux/windows/DesktopDisplayOptions.h"

#include "platform/linux/session/PortalSettings.h"

namespace orlune {

namespace {

const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString gnomeInterface = QStringLiteral("org.gnome.desktop.interface");
const QString kdeGlobals = QStringLiteral("org.kde.kdeglobals.KDE");

} // namespace

DesktopDisplayOptions::DesktopDisplayOptions(std::optional<bool> shouldReduceMotion)
    : isGiven_(shouldReduceMotion.has_value()),
      shouldReduceMotion_(*this, shouldReduceMotion.value_or(false)) {}

DesktopDisplayOptions::~DesktopDisplayOptions() = default;

const Published<bool>& DesktopDisplayOptions::shouldReduceMotion() const {
    if (!isGiven_ && !settings_) {
        auto* self = const_cast<DesktopDisplayOptions*>(this);
        settings_ = std::make_unique<PortalSettings>(
            QStringList{appearance, gnomeInterface, kdeGlobals},
            [self](const auto& group, const auto& key, const auto& value) {
                self->read(group, key, value);
            });
    }
    return shouldReduceMotion_;
}

void DesktopDisplayOptions::read(const QString& group, const QString& key, const QVariant& value) {
    if (group == appearance && key == QStringLiteral("reduced-motion")) {
        prefersLessMotion_ = value.toUInt() == 1;
    } else if (group == gnomeInterface && key == QStringLiteral("enable-animations")) {
        hasAnimations_ = value.toBool();
    } else if (group == kdeGlobals && key == QStringLiteral("AnimationDurationFactor")) {
        bool isNumber = false;
        areAnimationsInstant_ = value.toDouble(&isNumber) <= 0 && isNumber;
    } else {
        return;
    }
    const bool isReduced = prefersLessMotion_ || !hasAnimations_ || areAnimationsInstant_;
    if (isReduced != shouldReduceMotion_) {
        shouldReduceMotion_.set(isReduced);
    }
}

} // namespace orlune
