// One permission: its purpose, whether it is granted, and a button to request it if not. Main
// thread.
#pragma once

#include <QString>
#include <QWidget>

#include <functional>

namespace orlune {

namespace ui {
class Button;
class Symbol;
} // namespace ui

class PermissionRow final : public QWidget {
  public:
    /// Initially not granted. `action` is called by the button.
    PermissionRow(const QString& title, const QString& detail, std::function<void()> action);

    void setGranted(bool isGranted);

  private:
    const QString title_;
    const QString detail_;
    ui::Symbol* symbol_;
    QWidget* texts_;
    ui::Button* allow_;
};

} // namespace orlune
