// How far the first set-up has come: one capsule for each step, the present one wider. To assistive
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

    /// From 0. The change moves, except before the indicator is shown.
    void setStep(int step);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    /// For each step, how much of it is the present one and how much of it is reached, 0 to 1.
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
