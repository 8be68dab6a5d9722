// An ordinary text editor to try dictation in, which shows the meter while somebody dictates. It
// receives text like any program: by a paste, while it has the focus. Main thread.
#pragma once

#include "dictation/AppState.h"
#include "ui/Animation.h"
#include "ui/Observation.h"
#include "ui/Surface.h"

#include <QWidget>

#include <memory>
#include <optional>

class QPlainTextEdit;

namespace orlune {

class DictationMotion;
namespace ui {
class CrossFade;
}

class DictationSurface final : public QWidget {
  public:
    DictationSurface(std::shared_ptr<AppState> state, const Platform& platform);

    QPlainTextEdit& editor() { return *editor_; }

    QSize sizeHint() const override;

    /// The edge in a phase, which shows that the program listens.
    static ui::SurfaceStyle style(const AppState::Phase& phase);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void refresh();
    void showPhase(const AppState::Phase& phase);

    const std::shared_ptr<AppState> state_;
    DisplayOptions& displayOptions_;
    QPlainTextEdit* editor_;
    DictationMotion* motion_;
    ui::CrossFade* motionLayer_;
    ui::SurfaceStyle style_;
    /// The phase that is shown now.
    std::optional<AppState::Phase::Case> shownPhase_;
    ui::Animation animation_;
    ui::Observation observation_;
};

} // namespace orlune
