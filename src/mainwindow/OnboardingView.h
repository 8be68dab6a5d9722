// The initial set-up in four steps: welcome, key, permissions, a first dictation. Stores nothing
// itself and always begins with the welcome. Main thread.
#pragma once

#include "dictation/AppState.h"
#include "settings/PermissionStatus.h"
#include "ui/Observation.h"

#include <QWidget>

#include <functional>
#include <memory>

namespace orlune {

namespace ui {
class Button;
class CrossFade;
class Label;
class Text;
} // namespace ui
class DeepgramKeyEntry;
class DictationSurface;
class KeyCap;
class SetupPage;
class SetupPermissionRow;
class StepIndicator;

class OnboardingView final : public QWidget {
  public:
    /// `finish` is called when the user completes the last step.
    OnboardingView(std::shared_ptr<AppState> state, const Platform& platform,
                   std::function<void()> finish);
    ~OnboardingView() override;

  protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    enum Step { welcome, key, permissions, test };

    QWidget* header();
    QWidget* navigationBar();
    QWidget* keyPage(UrlOpener& urlOpener);
    QWidget* permissionsPage();
    QWidget* testPage(const Platform& platform);

    void advance();
    void setStep(int step);
    void focusStep();
    void focusTestEditorLater();
    void showPermissions();
    void refresh();

    const std::shared_ptr<AppState> state_;
    MainActor& mainActor_;
    Clock& clock_;
    DisplayOptions& displayOptions_;
    KeyEvents& keyEvents_;
    const std::function<void()> finish_;
    int step_ = welcome;

    StepIndicator* indicator_ = nullptr;
    ui::CrossFade* pages_ = nullptr;
    std::vector<QWidget*> steps_;
    DeepgramKeyEntry* keyEntry_ = nullptr;
    SetupPermissionRow* microphone_ = nullptr;
    SetupPermissionRow* accessibility_ = nullptr;
    SetupPage* testPage_ = nullptr;
    DictationSurface* testSurface_ = nullptr;
    QWidget* shortcutHint_ = nullptr;
    KeyCap* keyCap_ = nullptr;
    ui::Text* hint_ = nullptr;
    ui::Label* isReady_ = nullptr;
    ui::Button* back_ = nullptr;
    ui::Button* next_ = nullptr;

    Task focusing_;
    PermissionStatus permissionStatus_;
    ui::Observation observation_;
};

} // namespace orlune
