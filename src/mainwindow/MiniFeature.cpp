#include "mainwindow/MiniFeature.h"

#include "ui/AccessibleElement.h"
#include "ui/Stack.h"
#include "ui/Symbol.h"
#include "ui/Text.h"
#include "visuals/OrlunePalette.h"

#include <QVBoxLayout>

namespace orlune {

MiniFeature::MiniFeature(const QString& symbol, const QString& title, const QString& detail) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(ui::column(
        {.spacing = 7}, {new ui::Symbol(symbol, {.size = 14, .weight = ui::Weight::semibold},
                                        OrlunePalette::accent()),
                         new ui::Text(title, {.font = {.size = 12, .weight = ui::Weight::semibold},
                                              .alignment = Qt::AlignHCenter}),
                         new ui::Text(detail, {.font = {.size = 10.5},
                                               .color = ui::color(ui::Style::secondary),
                                               .alignment = Qt::AlignHCenter})}));
    setFixedWidth(112);
    ui::combineForAccessibility(*this, title + QStringLiteral(", ") + detail);
}

} // namespace orlune
