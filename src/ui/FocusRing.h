// The ring that marks the control with the keyboard focus. It is for keyboard users: it appears
// when the focus arrived by Tab, Backtab or a shortcut, and not after a click. When the program
// itself moves the focus, the ring shows if it was shown before. Main thread.
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
        inside, ///< painted by the control, within its own edge
        around, ///< outside the control, which has no room for it
    };

    /// `control` must outlive the ring.
    explicit FocusRing(QWidget& control, Place place = Place::inside);
    ~FocusRing() override;

    bool isShown() const { return isShown_; }
    /// Whether the control must paint the ring.
    bool isPaintedInside() const { return isShown_ && place_ == Place::inside; }

    bool eventFilter(QObject* control, QEvent* event) override;

  private:
    void show(bool isShown);

    QWidget& control_;
    Place place_;
    bool isShown_ = false;
    QPointer<QFocusFrame> frame_; ///< belongs to another widget, which destroys it
};

void paintFocusRing(QPainter& painter, const QRectF& control, double radius, const QColor& tint);

} // namespace orlune::ui
