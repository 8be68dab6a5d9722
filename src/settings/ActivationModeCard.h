// One activation mode as a card to choose. A radio button to keyboard and assistive technology: the
// cards beside each other are one group. Main thread.
#pragma once

#include "core/ActivationMode.h"
#include "ui/Animation.h"
#include "ui/FocusRing.h"

#include <QRadioButton>

#include <functional>
#include <memory>

namespace orlune {

namespace ui {
class Symbol;
} // namespace ui

class ActivationModeCard final : public QRadioButton {
  public:
    /// Under the pointer the card grows beyond its edge: the widget is this many points larger on
    /// each side.
    static constexpr int overflow = 2;
    static constexpr int minimumHeight = 108;

    /// `action` is called when the user chooses the card, also when it is chosen already.
    ActivationModeCard(ActivationMode mode, std::function<void()> action);
    ~ActivationModeCard() override;

    void setSelected(bool isSelected) { setChecked(isSelected); }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool hitButton(const QPoint& position) const override;

  private:
    QRect card() const;
    void showSelection();
    void scaleTo(double scale);

    ui::Symbol* mark_ = nullptr;
    /// Painted by the card, at its scale, and never shown by itself.
    std::unique_ptr<QWidget> content_;
    double scale_ = 1;
    ui::FocusRing focusRing_{*this};
    ui::Animation animation_;
};

} // namespace orlune
