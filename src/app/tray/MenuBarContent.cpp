#include "app/tray/MenuBarContent.h"

#include "ui/Symbol.h"

#include <utility>

namespace orlune {

MenuBarContent::MenuBarContent(std::shared_ptr<AppState> state, Actions actions)
    : state_(std::move(state)), observation_([this] { refresh(); }) {
    add(QStringLiteral("Open Orlune"), "Ctrl+O", std::move(actions.openMainWindow));
    menu_.addSeparator();
    dictation_ = add({}, "Alt+Space", [this] { toggleDictation(); });
    enabled_ = add(QStringLiteral("Orlune Enabled"), "", {});
    enabled_->setCheckable(true);
    QObject::connect(enabled_, &QAction::triggered, &menu_,
                     [this](bool isOn) { state_->setEnabled(isOn); });
    menu_.addSeparator();
    instruction_ = add({}, "", {});
    instruction_->setEnabled(false);
    auto* settings = add(QStringLiteral("Settings…"), "Ctrl+,", std::move(actions.openSettings));
    settings->setIcon(
        ui::symbolIcon(QStringLiteral("gearshape"), menu_.palette().color(QPalette::WindowText)));
    menu_.addSeparator();
    add(QStringLiteral("Quit Orlune"), "Ctrl+Q", std::move(actions.quit));
    observation_.observe(*state_);
    refresh();
}

QString MenuBarContent::dictationTitle(const AppState& state) {
    return state.phase().get().is(AppState::Phase::Case::listening)
               ? QStringLiteral("Stop Dictation")
               : QStringLiteral("Start Dictation");
}

QAction* MenuBarContent::add(const QString& title, const char* shortcut,
                             std::function<void()> action) {
    auto* item = menu_.addAction(title);
    item->setShortcut(QKeySequence(QString::fromLatin1(shortcut)));
    item->setShortcutVisibleInContextMenu(true);
    if (action) {
        QObject::connect(item, &QAction::triggered, &menu_, std::move(action));
    }
    return item;
}

void MenuBarContent::toggleDictation() const {
    if (state_->phase().get().is(AppState::Phase::Case::listening)) {
        state_->endDictation();
    } else {
        state_->beginDictation();
    }
}

void MenuBarContent::refresh() {
    dictation_->setText(dictationTitle(*state_));
    enabled_->setChecked(state_->isEnabled());
    instruction_->setText(QString::fromStdString(state_->idleInstruction()));
}

} // namespace orlune
