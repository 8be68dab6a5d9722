// One page of the first set-up: a title, what it is about, and its content, in the middle of all
// the room there is. Main thread.
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
