// Push buttons in the style of these windows. In everything else they are Qt's buttons: focus,
// keys, default button, accessibility. Main thread.
#pragma once

#include "ui/FocusRing.h"
#include "ui/Font.h"
#include "ui/Style.h"

#include <QPushButton>

namespace orlune::ui {

enum class ButtonStyle {
    plain,     ///< only its title, and no larger than that
    bordered,  ///< on a quiet background
    prominent, ///< on the tint, for the next step
};

enum class ControlSize { regular, large };

struct ButtonLook {
    ButtonStyle style = ButtonStyle::bordered;
    ControlSize size = ControlSize::regular;
    Font font{.size = textSize::body};
    QColor color = ui::color(Style::primary); ///< of the title
    QString symbol = {};                      ///< before the title, by name
};

class Button : public QPushButton {
  public:
    Button(const QString& title, const ButtonLook& look);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    double symbolWidth() const;

    ButtonLook look_;
    FocusRing focusRing_;
};

} // namespace orlune::ui
