#include "mainwindow/MainGlassCard.h"

#include "ui/Style.h"
#include "ui/Surface.h"
#include "visuals/OrlunePalette.h"

#include <QVBoxLayout>

namespace orlune {

MainGlassCard::MainGlassCard(QWidget* content) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new ui::Surface({.shape = ui::Shape::rounded(24),
                                       .fill = ui::withOpacity(OrlunePalette::surface(), 0.92),
                                       .stroke = OrlunePalette::border(),
                                       .lineWidth = 0.7},
                                      content));
    setSizePolicy(content->sizePolicy());
}

} // namespace orlune
