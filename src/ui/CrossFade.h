// A view whose content changes with a soft transition: the old picture fades out while the new
// content fades in. Main thread.
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
    /// visible window the change is immediate. The new content moves in from `travel` points away,
    /// and the old picture moves out by the same distance in the opposite direction.
    void change(const Spring& spring, const std::function<void()>& apply, QPoint travel = {});
    /// Ends a running change.
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
    double progress_ = 1; ///< a spring may exceed 1
    QPointF travel_;
    Animation animation_;
};

/// Whether `view` is inside content that is fading: no part of it can be painted separately then.
bool isFading(const QWidget& view);

} // namespace orlune::ui
