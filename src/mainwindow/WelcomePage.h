// The first page of the set-up, which says what the program is for. Main thread.
#pragma once

#include "ui/Shadow.h"

#include <QWidget>

namespace orlune {

class OrluneMark;

class WelcomePage final : public QWidget {
  public:
    WelcomePage();

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    OrluneMark* mark_;
    ui::Shadow shadow_;
};

} // namespace orlune
