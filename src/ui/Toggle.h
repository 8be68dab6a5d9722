// A switch with its title, and a caption that explains it. A check box for keyboard and assistive
// technology; a click on the words counts too, but not one next to them. Main thread.
#pragma once

#include "ui/FocusRing.h"

#include <QCheckBox>

namespace orlune::ui {

class Text;

class Toggle final : public QCheckBox {
  public:
    Toggle(const QString& title, const QString& caption);

    void setCaption(const QString& caption);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }

  private:
    void describe();

    QString title_;
    Text* caption_;
    QWidget* words_;
    FocusRing focusRing_{*this};
};

} // namespace orlune::ui
