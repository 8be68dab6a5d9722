// The page of the settings: how a dictation is started, what is switched on, the API key and the
// permissions. It stores no settings: it shows and changes those of the state, which stores them.
// Main thread. Errors of the keyring are shown under the entry.
#pragma once

#include "dictation/AppState.h"
#include "settings/PermissionStatus.h"
#include "ui/Observation.h"

#include <QString>
#include <QWidget>

#include <memory>
#include <optional>
#include <vector>

namespace orlune {

namespace ui {
class Button;
class Label;
class SecureField;
class Toggle;
} // namespace ui
class ActivationModeCard;
class PermissionRow;
class ShortcutRecorderControl;

class SettingsView final : public QWidget {
  public:
    static constexpr QSize contentSize{550, 640};

    SettingsView(std::shared_ptr<AppState> state, const Platform& platform);
    ~SettingsView() override;

    /// Clears an entry that was not saved.
    void discardEntry();

  private:
    QWidget* activationPanel(const Platform& platform);
    QWidget* orlunePanel();
    QWidget* keyPanel();
    QWidget* permissionsPanel();
    QWidget* page(const Platform& platform);

    void saveAPIKey();
    void removeAPIKey();
    void clearEntry();
    void refresh();
    void refreshKey();

    const std::shared_ptr<AppState> state_;
    KeyEvents& keyEvents_;
    const KeychainStore keychain_;
    PermissionStatus permissions_;

    std::vector<ActivationModeCard*> cards_; ///< one per mode, in the order of the modes
    ShortcutRecorderControl* recorder_ = nullptr;
    ui::Toggle* isEnabled_ = nullptr;
    ui::Toggle* intentCheck_ = nullptr;
    ui::SecureField* deepgramAPIKey_ = nullptr;
    ui::Label* keyStatus_ = nullptr;
    ui::Button* removeKey_ = nullptr;
    ui::Button* saveKey_ = nullptr;
    PermissionRow* microphone_ = nullptr;
    PermissionRow* accessibility_ = nullptr;

    /// The result of the last save or removal; none before the first.
    std::optional<QString> keyMessage_;

    ui::Observation observation_;
};

} // namespace orlune
