// The background of the overlay: a capsule of dark glass behind its content, with a soft shadow.
// Where windows cannot be translucent it is opaque and has no shadow. Main thread.
#pragma once

#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <QWidget>

namespace orlune {

class GlassCapsule final : public QWidget {
  public:
    /// `margin` is the room for the shadow around the capsule, in points.
    GlassCapsule(QWidget* content, int margin);

    /// The colour of the glass when it is opaque.
    static QColor opaqueGlass();
    /// The colour of the glass inside the capsule's edge.
    QColor glass() const;

    void setTranslucent(bool isTranslucent);
    /// In this widget's coordinates.
    QPainterPath outline() const;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    const QImage& shadow();

    int margin_;
    bool isTranslucent_ = true;
    QImage shadow_; ///< for the current size and scale
};

} // namespace orlune
