// One permission of the initial set-up: its purpose, and either that it is granted or a button that
// requests it. Main thread.
#pragma once

#include <QWidget>

#include <functional>

namespace orlune {

namespace ui {
class Button;
class Label;
class Surface;
class Symbol;
} // namespace ui

class SetupPermissionRow final : public QWidget {
  public:
    /// `action` is called by the button.
    SetupPermissionRow(const QString& symbol, const QString& title, const QString& detail,
                       bool granted, std::function<void()> action);

    void setGranted(bool granted);
    void focusButton();

  private:
    ui::Symbol* symbol_;
    ui::Surface* tile_;
    ui::Label* allowed_;
    ui::Button* allow_;
};

} // namespace orlune
