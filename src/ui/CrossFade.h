// A view whose content gives way to new content softly: the old picture fades while the new one
// appears in its place. Main thread.
#pragma once

#include "ui/Animation.h"

#include <QPixmap>
#include <QWidget>

#include <functional>

class QGraphicsOpacityEffect;

namespace orlune::ui {

class CrossFade final : public QWidget {
  public:
    explicit CrossFade(QWidget* content);

    /// Runs `apply`, which changes the content, and shows the change with `spring`. Without a
    /// window on the screen the change is there at once. The new content comes from `travel` points
    /// away, and the old picture leaves as far to the opposite side.
    void change(const Spring& spring, const std::function<void()>& apply, QPoint travel = {});
    /// Ends a change that is under way.
    void settle();
    bool isFading() const { return animation_.state() == QAbstractAnimation::Running; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    void finish();

    QWidget* content_;
    QGraphicsOpacityEffect* effect_;
    QPixmap previous_;
    double progress_ = 1; ///< may exceed 1, when a spring swings
    QPointF travel_;
    Animation animation_;
};

/// Whether `view` is inside content that fades just now: no part of it can be painted by itself.
bool isFading(const QWidget& view);

} // namespace orlune::ui
