// The field for the speech service's key during the set-up, which also shows whether a key is
// stored. Main thread. When the secret store refuses the key, the error is shown and the entered
// text is kept.
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

    /// Clears an entry that was not saved.
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
    std::optional<QString> keyMessage_; ///< the result of the last save; none before the first
    ui::Observation observation_;
};

} // namespace orlune
