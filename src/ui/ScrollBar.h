// A slim scroll bar that lets what lies behind show through. Qt's in everything but its looks. Main
// thread.
#pragma once

#include <QScrollBar>

namespace orlune::ui {

class ScrollBar final : public QScrollBar {
  public:
    enum class Place {
        beside, ///< what is scrolled
        over,   ///< it, at its edge
    };

    /// Upright.
    explicit ScrollBar(Place place = Place::beside);

    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace orlune::ui
