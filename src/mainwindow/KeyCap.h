// The name of a key, or of several pressed together, on a key cap. The tool tip and assistive
// technology add where the key is. Main thread.
#pragma once

#include <QWidget>

namespace orlune {

namespace ui {
class Text;
}

class KeyCap final : public QWidget {
  public:
    explicit KeyCap(const QString& text);

    /// No hint when it is empty.
    void setText(const QString& text, const QString& hint = {});

  private:
    ui::Text* text_;
};

} // namespace orlune
