// The program's icon in the desktop's tray: shows the phase, opens the menu. It appears when the
// desktop has a tray, which may be long after the program's start, or never. Main thread.
#pragma once

#include "app/tray/MenuBarContent.h"
#include "platform/KeyEvents.h"
#include "platform/linux/windows/TrayHost.h"

#include <QIcon>
#include <QSystemTrayIcon>

#include <memory>
#include <optional>

namespace orlune {

/// The name of the symbol for a phase.
QString menuBarSymbol(const AppState::Phase& phase);
/// The symbol in white with a dark edge, visible on light and dark panels.
QIcon menuBarIcon(const QString& symbol);

class StatusItem {
  public:
    StatusItem(std::shared_ptr<AppState> state, KeyEvents& keyEvents,
               MenuBarContent::Actions actions);

    MenuBarContent& content() { return content_; }

  private:
    void show();
    void refresh();

    QString tip() const;

    const std::shared_ptr<AppState> state_;
    KeyEvents& keyEvents_;
    const std::function<void()> openMainWindow_;
    MenuBarContent content_;
    std::optional<QSystemTrayIcon> icon_; ///< created once there is a tray
    QString shownSymbol_;
    ui::Observation observation_;
    TrayHost host_;
};

} // namespace orlune
