#include "settings/SettingsWindow.h"

#include "settings/SettingsView.h"
#include "ui/Present.h"
#include "ui/Theme.h"
#include "visuals/OrlunePalette.h"

#include <QCloseEvent>
#include <QShortcut>
#include <QVBoxLayout>

#include <utility>

namespace orlune {

SettingsWindow::SettingsWindow(std::shared_ptr<AppState> state, const Platform& platform)
    : windowFacilities_(platform.windowFacilities),
      view_(new SettingsView(std::move(state), platform)) {
    setWindowTitle(QStringLiteral("Orlune Settings"));
    setAutoFillBackground(true);
    ui::applyDarkTheme(*this, OrlunePalette::background(), OrlunePalette::accent());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(view_);
    // Explicit keys, because Qt's standard key for closing differs on desktops that Qt does not
    // know.
    for (const QKeyCombination keys :
         {QKeyCombination(Qt::Key_Escape), QKeyCombination(Qt::ControlModifier, Qt::Key_W)}) {
        connect(new QShortcut(QKeySequence(keys), this), &QShortcut::activated, this,
                &QWidget::close);
    }
    // No control shows the focus before the user has moved it with the keyboard.
    setFocus();
}

void SettingsWindow::present() {
    ui::present(*this, windowFacilities_);
}

void SettingsWindow::closeEvent(QCloseEvent* event) {
    view_->discardEntry();
    QWidget::closeEvent(event);
}

} // namespace orlune
