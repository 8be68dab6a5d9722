// The name of a key, or of several pressed together, on a key cap. Main thread.
#pragma once

#include <QWidget>

namespace orlune {

namespace ui {
class Text;
}

class KeyCap final : public QWidget {
  public:
    explicit KeyCap(const QString& text);

    void setText(const QString& text);

  private:
    ui::Text* text_;
};

} // namespace orlune
