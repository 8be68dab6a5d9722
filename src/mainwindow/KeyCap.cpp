#include "mainwindow/KeyCap.h"

#include "ui/AccessibleElement.h"
#include "ui/Stack.h"
#include "ui/Surface.h"
#include "ui/Text.h"

#include <QVBoxLayout>

namespace orlune {

KeyCap::KeyCap(const QString& text)
    : text_(new ui::Text(
          text, {.font = {.size = 12, .weight = ui::Weight::bold, .design = ui::Design::rounded},
                 .lineLimit = 1})) {
    const QColor primary = ui::color(ui::Style::primary);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new ui::Surface({.shape = ui::Shape::rounded(8),
                                       .fill = ui::withOpacity(primary, 0.07),
                                       .stroke = ui::withOpacity(primary, 0.09),
                                       .lineWidth = 0.5},
                                      ui::padded(text_, {.horizontal = 13, .vertical = 7})));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed); // never shortened
}

void KeyCap::setText(const QString& text, const QString& hint) {
    text_->setText(text);
    setToolTip(hint);
    ui::combineForAccessibility(*this, hint.isEmpty() ? text : text + QStringLiteral(", ") + hint);
}

} // namespace orlune
