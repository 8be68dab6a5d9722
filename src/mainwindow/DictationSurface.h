// An ordinary text editor to try dictation in, which shows the voice while somebody dictates. Text
// reaches it as it reaches any program: pasted, while it has the keyboard. Main thread.
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

    /// The edge in a phase; tells where the voice is heard.
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
    /// What is shown at present.
    std::optional<AppState::Phase::Case> shownPhase_;
    ui::Animation animation_;
    ui::Observation observation_;
};

} // namespace orlune
