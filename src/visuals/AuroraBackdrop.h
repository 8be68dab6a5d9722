// The background of the main window: dark, with a soft glow in two of its corners. It is placed
// behind the content as a sibling, not as its parent. Main thread. Its picture is computed once per
// size and freed while it is hidden.
#pragma once

#include <QImage>
#include <QWidget>

namespace orlune {

class AuroraBackdrop final : public QWidget {
  public:
    explicit AuroraBackdrop(bool active);

    /// The glow at the top is stronger while active.
    void setActive(bool active);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    bool active_;
    QImage picture_;
};

} // namespace orlune
