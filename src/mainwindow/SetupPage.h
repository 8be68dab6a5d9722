// One page of the initial set-up: a title, a subtitle, and its content, centred in the available
// room. Main thread.
#pragma once

#include <QWidget>

namespace orlune {

namespace ui {
class Text;
}

class SetupPage final : public QWidget {
  public:
    /// Owns `content`.
    SetupPage(const QString& title, const QString& subtitle, QWidget* content);

    void setSubtitle(const QString& subtitle);

  private:
    ui::Text* subtitle_;
};

} // namespace orlune
