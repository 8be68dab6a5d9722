// Shows whether one requirement of the program is met. One element for assistive technology, such
// as "Microphone, Ready". Main thread.
#pragma once

#include <QWidget>

namespace orlune {

namespace ui {
class Symbol;
class Text;
} // namespace ui

class StatusTile final : public QWidget {
  public:
    StatusTile(const QString& symbol, const QString& title, bool ready);

    void setReady(bool ready);

  private:
    const QString title_;
    ui::Symbol* symbol_;
    ui::Text* readiness_;
};

/// "Ready" or "Setup" in small letters, for the end of tiles and rows.
ui::Text* readinessText();
void showReadiness(ui::Text& text, bool ready);

} // namespace orlune
