// Owns the small floating panel that shows a dictation above every other program: shows, hides,
// sizes and places it as the phase changes. The panel takes neither focus nor clicks. Main thread;
// created while the application runs, and must be destroyed before the platform.
#pragma once

#include "dictation/AppState.h"
#include "ui/Animation.h"

#include <QObject>
#include <QPoint>
#include <QSize>

#include <chrono>
#include <memory>
#include <optional>

namespace orlune {

class OverlayPanel;

class OverlayWindowController final : public QObject {
  public:
    OverlayWindowController(std::shared_ptr<AppState> state, const Platform& platform);
    ~OverlayWindowController() override;

  private:
    void receive(const AppState::Phase& phase);
    void show();
    void hide();
    void positionPanel(double offset, bool animated);
    void animate(std::chrono::milliseconds duration, const QEasingCurve& curve, double opacity);

    Screens& screens_;
    std::unique_ptr<OverlayPanel> panel_;
    /// The end state of a running animation.
    QPoint targetOrigin_;
    ui::Animation animation_;
    Subscription cancellable_;
};

/// The place of a panel of this size, as the origin of its upper left corner: centred on the screen
/// under the pointer, `offset` points above its resting place. None without a screen.
std::optional<Point> panelOrigin(Screens& screens, QSize panel, double offset);

} // namespace orlune
