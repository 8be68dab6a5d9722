// A symbol and a title side by side, one element to assistive technology. Main thread.
#pragma once

#include "ui/Text.h"

#include <QWidget>

namespace orlune::ui {

class Symbol;

class Label final : public QWidget {
  public:
    /// The symbol has the title's size and weight.
    Label(const QString& symbol, const QString& title, const TextStyle& style);

    void setSymbol(const QString& symbol);
    void setTitle(const QString& title);
    /// Colours both.
    void setColor(const QColor& color);
    void setSymbolColor(const QColor& color);

  private:
    Symbol* symbol_;
    Text* title_;
};

} // namespace orlune::ui
