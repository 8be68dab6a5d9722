// The progress of the initial set-up: one capsule per step, the current one wider. For assistive
// technology one element such as "Step 2 of 4". Main thread.
#pragma once

#include "ui/Animation.h"

#include <QWidget>

#include <array>

namespace orlune {

class StepIndicator final : public QWidget {
  public:
    static constexpr int stepCount = 4;

    StepIndicator();

    /// Counted from 0. The change is animated, except before the indicator is shown.
    void setStep(int step);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    /// For each step, to what degree it is the current one and to what degree it is reached, 0 to
    /// 1.
    struct Look {
        double presence = 0;
        double reach = 0;
    };
    using Looks = std::array<Look, stepCount>;
    static Looks looks(int step);

    Looks from_;
    Looks to_;
    Looks shown_;
    ui::Animation animation_;
};

} // namespace orlune
