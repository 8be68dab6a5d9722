// A slim scroll bar with a transparent background. Otherwise it is Qt's. Main thread.
#pragma once

#include <QScrollBar>

namespace orlune::ui {

class ScrollBar final : public QScrollBar {
  public:
    enum class Place {
        beside, ///< next to the scrolled content
        over,   ///< over the content, at its edge
    };

    /// A vertical bar.
    explicit ScrollBar(Place place = Place::beside);

    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace orlune::ui
