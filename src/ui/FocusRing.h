// The ring that marks the control with the keyboard focus. It is for whoever works with the
// keyboard: it appears when the focus came by Tab, Backtab or a shortcut, and after a click there
// is none. A focus that the program itself moves on shows as the one before it did. Main thread.
#pragma once

#include <QObject>
#include <QPointer>

class QColor;
class QFocusFrame;
class QPainter;
class QRectF;
class QWidget;

namespace orlune::ui {

class FocusRing final : public QObject {
  public:
    enum class Place {
        inside, ///< the control paints it, within its own edge
        around, ///< it lies round the control, which has no room for it
    };

    /// `control` outlives the ring.
    explicit FocusRing(QWidget& control, Place place = Place::inside);
    ~FocusRing() override;

    bool isShown() const { return isShown_; }
    /// Whether the control has to paint it.
    bool isPaintedInside() const { return isShown_ && place_ == Place::inside; }

    bool eventFilter(QObject* control, QEvent* event) override;

  private:
    void show(bool isShown);

    QWidget& control_;
    Place place_;
    bool isShown_ = false;
    QPointer<QFocusFrame> frame_; ///< lies in another widget, and goes with that
};

void paintFocusRing(QPainter& painter, const QRectF& control, double radius, const QColor& tint);

} // namespace orlune::ui
