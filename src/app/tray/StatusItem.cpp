#include "app/tray/StatusItem.h"

#include "ui/Picture.h"
#include "ui/Symbol.h"

#include <QPainter>

#include <utility>

namespace orlune {

QString menuBarSymbol(const AppState::Phase& phase) {
    switch (phase.kind()) {
    case AppState::Phase::Case::idle:
        break;
    case AppState::Phase::Case::listening:
        return QStringLiteral("waveform.circle.fill");
    case AppState::Phase::Case::processing:
        return QStringLiteral("ellipsis.circle.fill");
    case AppState::Phase::Case::reviewing:
        return QStringLiteral("checkmark.message.fill");
    case AppState::Phase::Case::success:
        return QStringLiteral("checkmark.circle.fill");
    case AppState::Phase::Case::failure:
        return QStringLiteral("exclamationmark.circle.fill");
    }
    return QStringLiteral("waveform.circle");
}

QIcon menuBarIcon(const QString& symbol) {
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 48, 64}) {
        // A symbol's square is 1.25 times its font's size.
        const double fontSize = side / 1.25;
        const auto drawn = [&](const QColor& color) {
            return ui::symbolPixmap(symbol, fontSize, ui::Weight::semibold, color,
                                    /*devicePixelRatio=*/1);
        };
        const auto edge = drawn(ui::withOpacity(Qt::black, 0.35));
        const double reach = side / 22.0;
        icon.addPixmap(ui::picture({side, side}, /*devicePixelRatio=*/1, [&](QPainter& painter) {
            const QPointF middle((side - edge.width()) / 2.0, (side - edge.height()) / 2.0);
            for (const QPointF direction :
                 {QPointF(-1, 0), QPointF(1, 0), QPointF(0, -1), QPointF(0, 1)}) {
                painter.drawPixmap(middle + direction * reach, edge);
            }
            painter.drawPixmap(middle, drawn(Qt::white));
        }));
    }
    return icon;
}

StatusItem::StatusItem(std::shared_ptr<AppState> state, KeyEvents& keyEvents,
                       MenuBarContent::Actions actions)
    : state_(std::move(state)), keyEvents_(keyEvents), openMainWindow_(actions.openMainWindow),
      content_(state_, std::move(actions)), observation_([this] { refresh(); }),
      host_([this] { show(); }) {
    observation_.observe(*state_);
}

void StatusItem::show() {
    icon_.emplace();
    icon_->setContextMenu(&content_.menu());
    QObject::connect(&*icon_, &QSystemTrayIcon::activated, &*icon_,
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger) {
                             openMainWindow_();
                         }
                     });
    refresh();
    icon_->show();
}

void StatusItem::refresh() {
    if (!icon_) {
        return;
    }
    if (const auto symbol = menuBarSymbol(state_->phase()); symbol != shownSymbol_) {
        shownSymbol_ = symbol;
        icon_->setIcon(menuBarIcon(symbol));
    }
    if (const auto text = tip(); icon_->toolTip() != text) {
        icon_->setToolTip(text);
    }
}

QString StatusItem::tip() const {
    const auto prefix = QStringLiteral("Orlune: ");
    if (!state_->phase().get().is(AppState::Phase::Case::idle)) {
        return prefix + QString::fromStdString(state_->statusMessage());
    }
    const auto instruction = prefix + QString::fromStdString(state_->idleInstruction());
    const auto hint = state_->shortcut().get().functionKeyHint(keyEvents_.functionKeyStandIn());
    return hint.empty() ? instruction
                        : instruction + QStringLiteral(" (%1)").arg(QString::fromStdString(hint));
}

} // namespace orlune
