// One of the program's benefits as a symbol and a few words. One element for assistive technology.
#pragma once

#include <QWidget>

namespace orlune {

class MiniFeature final : public QWidget {
  public:
    MiniFeature(const QString& symbol, const QString& title, const QString& detail);
};

} // namespace orlune
