// The background of the overlay: a capsule of dark glass behind its content, with a soft shadow.
// Where windows cannot be translucent it is opaque and casts none. Main thread.
#pragma once

#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <QWidget>

namespace orlune {

class GlassCapsule final : public QWidget {
  public:
    /// `content` with `margin` points around the capsule for the shadow.
    GlassCapsule(QWidget* content, int margin);

    /// The glass where nothing shines through.
    static QColor opaqueGlass();
    /// The glass inside the capsule's edge.
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
    QImage shadow_; ///< for the present size and scale
};

} // namespace orlune
