// One activation mode as a selectable card. A radio button for keyboard and assistive technology;
// adjacent cards form one group. Main thread.
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
    /// Under the pointer the card grows by this many points on each side, so the widget is that
    /// much larger.
    static constexpr int overflow = 2;
    static constexpr int minimumHeight = 108;

    /// `action` is called when the user selects the card, even when it is already selected.
    ActivationModeCard(ActivationMode mode, std::function<void()> action);
    ~ActivationModeCard() override;

    /// A remark on hover and for screen readers, such as why the mode works differently here.
    void setHint(const QString& hint);
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
    /// Painted by the card, at its scale; never shown itself.
    std::unique_ptr<QWidget> content_;
    double scale_ = 1;
    ui::FocusRing focusRing_{*this};
    ui::Animation animation_;
};

} // namespace orlune
