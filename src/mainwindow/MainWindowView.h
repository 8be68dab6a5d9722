// The content of the main window: the set-up until it has been finished once, then the home page,
// on a backdrop that glows during a dictation. Main thread.
#pragma once

#include "dictation/AppState.h"
#include "ui/Observation.h"

#include <QWidget>

#include <functional>
#include <memory>

namespace orlune {

namespace ui {
class CrossFade;
}
class AuroraBackdrop;

class MainWindowView final : public QWidget {
  public:
    /// `openSettings` is called when the user wants the settings.
    MainWindowView(std::shared_ptr<AppState> state, const Platform& platform,
                   std::function<void()> openSettings);

  private:
    QWidget* makeHome();
    void completeOnboarding();
    void refresh();

    const std::shared_ptr<AppState> state_;
    const Platform platform_;
    const std::function<void()> openSettings_;
    AuroraBackdrop* backdrop_;
    QWidget* pages_;
    QWidget* page_ = nullptr;
    ui::CrossFade* content_;
    ui::Observation observation_;
};

} // namespace orlune
