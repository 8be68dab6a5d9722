// The main window's page after the set-up: the current state, a field to try a dictation, and
// whether everything it needs is ready. Main thread.
#pragma once

#include "dictation/AppState.h"
#include "settings/PermissionStatus.h"
#include "ui/Observation.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <string>

namespace orlune {

namespace ui {
class Button;
class Surface;
class Text;
} // namespace ui
class DictationSurface;
class KeyCap;
class StatusTile;

/// The current state in a few words.
std::string phaseTitle(const AppState& state);
/// What the user can do now, or why the dictation failed.
std::string phaseSubtitle(const AppState& state);

class HomeView final : public QWidget {
  public:
    HomeView(std::shared_ptr<AppState> state, const Platform& platform,
             std::function<void()> openSettings);

  private:
    QWidget* header();
    QWidget* statusPill();
    QWidget* readyCard(const Platform& platform);
    QWidget* systemSection(std::function<void()> openSettings);
    QWidget* engineRow();
    void clear();
    void refresh();

    const std::shared_ptr<AppState> state_;
    KeyEvents& keyEvents_;
    ui::Surface* pillDot_ = nullptr;
    ui::Text* pillText_ = nullptr;
    QWidget* phaseTexts_ = nullptr;
    ui::Text* title_ = nullptr;
    ui::Text* subtitle_ = nullptr;
    KeyCap* keyCap_ = nullptr;
    DictationSurface* surface_ = nullptr;
    ui::Button* clear_ = nullptr;
    StatusTile* microphone_ = nullptr;
    StatusTile* accessibility_ = nullptr;
    QWidget* engine_ = nullptr;
    ui::Text* engineReadiness_ = nullptr;
    PermissionStatus permissionStatus_;
    ui::Observation observation_;
};

} // namespace orlune
