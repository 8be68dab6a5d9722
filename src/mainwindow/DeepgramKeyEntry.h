// Where the key of the speech service is entered during the set-up, and whether one is stored. Main
// thread. A refusal of the secret store is shown and keeps what was entered.
#pragma once

#include "dictation/AppState.h"
#include "ui/Observation.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

namespace orlune {

namespace ui {
class Button;
class SecureField;
class Symbol;
class Text;
} // namespace ui

class DeepgramKeyEntry final : public QWidget {
  public:
    /// `saved` is called after each key that was stored.
    DeepgramKeyEntry(std::shared_ptr<AppState> state, UrlOpener& urlOpener,
                     std::function<void()> saved);

    /// Forgets what was entered and not saved.
    void discardEntry();

  private:
    QWidget* entryRow();
    QWidget* statusRow(UrlOpener& urlOpener);
    void saveAPIKey();
    void refresh();

    const std::shared_ptr<AppState> state_;
    const std::function<void()> saved_;
    ui::SecureField* field_;
    ui::Button* save_;
    ui::Symbol* icon_;
    ui::Text* status_;
    std::optional<QString> keyMessage_; ///< what became of the last key, if there was one
    ui::Observation observation_;
};

} // namespace orlune
