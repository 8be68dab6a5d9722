// The content of the floating panel: the card of the intent check during a review, and in every
// other phase a capsule with the phase's icon, the status and one line of detail. It has no state
// of its own; it reads the program's state. Main thread.
#pragma once

#include "dictation/AppState.h"
#include "ui/Observation.h"

#include <QPainterPath>
#include <QWidget>

#include <memory>
#include <optional>
#include <string>

namespace orlune {

namespace ui {
class CrossFade;
class Text;
} // namespace ui
class GlassCapsule;
class IntentCheckView;
class PhaseIcon;

class OverlayView final : public QWidget {
  public:
    /// The panel's size in points, with the capsule and with the card.
    static constexpr QSize compactSize{262, 82};
    static constexpr QSize reviewSize{492, 390};
    static QSize size(const AppState::Phase& phase);

    OverlayView(std::shared_ptr<AppState> state, const Platform& platform);
    ~OverlayView() override;

    /// The second line of the capsule.
    static std::string detail(const AppState& state);
    /// The transcript, or else why it failed, or else that the program is ready.
    static std::string summary(const AppState& state);

    /// The outline of the content, for a panel that cannot be translucent.
    QPainterPath outline() const;
    /// Shows the current state now, instead of in the next turn.
    void refresh();

  private:
    QWidget* makeCompactOverlay(const Platform& platform);
    void showCard(const IntentCheck& check);
    void showCapsule();
    void updateCapsule();

    const std::shared_ptr<AppState> state_;
    WindowFacilities& windowFacilities_;
    KeyEvents& keyEvents_;

    ui::CrossFade* content_ = nullptr;
    QWidget* pages_ = nullptr;
    GlassCapsule* compactOverlay_ = nullptr;
    ui::CrossFade* compactContent_ = nullptr;
    PhaseIcon* phaseIcon_ = nullptr;
    ui::Text* status_ = nullptr;
    ui::Text* detail_ = nullptr;
    IntentCheckView* intentCheck_ = nullptr; ///< during a review

    /// The phase that is shown now.
    std::optional<AppState::Phase> shownPhase_;
    std::string shownShortcut_;

    ui::Observation observation_;
};

} // namespace orlune
