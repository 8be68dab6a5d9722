#include "ui/Label.h"

#include "ui/AccessibleElement.h"
#include "ui/Stack.h"
#include "ui/Symbol.h"

#include <QVBoxLayout>

namespace orlune::ui {

Label::Label(const QString& symbol, const QString& title, const TextStyle& style)
    : symbol_(new Symbol(symbol, style.font, style.color)), title_(new Text(title, style)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(row({.spacing = 5}, {symbol_, title_}));
    combineForAccessibility(*this, title);
}

void Label::setSymbol(const QString& symbol) {
    symbol_->setName(symbol);
}

void Label::setTitle(const QString& title) {
    title_->setText(title);
    combineForAccessibility(*this, title);
}

void Label::setColor(const QColor& color) {
    title_->setColor(color);
    symbol_->setColor(color);
}

void Label::setSymbolColor(const QColor& color) {
    symbol_->setColor(color);
}

} // namespace orlune::ui
