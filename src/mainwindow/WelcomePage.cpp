#include "mainwindow/WelcomePage.h"

#include "mainwindow/MiniFeature.h"
#include "ui/Stack.h"
#include "ui/Style.h"
#include "ui/Text.h"
#include "ui/WidthLimit.h"
#include "visuals/OrluneMark.h"

#include <QPainter>
#include <QVBoxLayout>

namespace orlune {

WelcomePage::WelcomePage()
    : mark_(new OrluneMark(66)), shadow_(ui::withOpacity(Qt::black, 0.08), /*radius=*/12,
                                         /*offset=*/{0, 4}) {
    auto* heading = new ui::Text(
        QStringLiteral("Speak. Structure. Ship."),
        {.font = {.size = 28, .weight = ui::Weight::semibold}, .alignment = Qt::AlignHCenter});
    auto* invitation = new ui::Text(
        QStringLiteral("Press Fn anywhere on your Mac. Speak naturally, then press it again to "
                       "place a structured prompt at your cursor."),
        {.font = {.size = 15},
         .color = ui::color(ui::Style::secondary),
         .lineSpacing = 3,
         .alignment = Qt::AlignHCenter});
    auto* texts = ui::column({.spacing = 10}, {heading, ui::atMostWide(invitation, 490)});
    auto* features =
        ui::row({.spacing = 22, .alignment = ui::Alignment::leading},
                {new MiniFeature(QStringLiteral("bolt.fill"), QStringLiteral("Fast"),
                                 QStringLiteral("Live streaming")),
                 new MiniFeature(QStringLiteral("wand.and.sparkles"), QStringLiteral("Focused"),
                                 QStringLiteral("Intent preserved")),
                 new MiniFeature(QStringLiteral("key.fill"), QStringLiteral("Yours"),
                                 QStringLiteral("Bring your own key"))});
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 32, 32, 32);
    layout->setSpacing(0);
    layout->addStretch();
    layout->addWidget(ui::column({.spacing = 22}, {mark_, texts, features}));
    layout->addStretch();
}

void WelcomePage::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect place(mark_->mapTo(this, QPoint()), mark_->size());
    shadow_.paint(painter, OrluneMark::outline(place));
}

} // namespace orlune
