#include "mainwindow/MainWindow.h"

#include "mainwindow/MainWindowView.h"
#include "ui/Present.h"

#include <QShortcut>
#include <QVBoxLayout>

#include <utility>

namespace orlune {

namespace {

constexpr QSize defaultSize(700, 540);

} // namespace

MainWindow::MainWindow(std::shared_ptr<AppState> state, const Platform& platform,
                       Callbacks callbacks)
    : windowFacilities_(platform.windowFacilities) {
    setWindowTitle(QStringLiteral("Orlune"));
    setAttribute(Qt::WA_QuitOnClose, false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(
        new MainWindowView(std::move(state), platform, std::move(callbacks.openSettings)));
    resize(defaultSize);
    connect(new QShortcut(QKeyCombination(Qt::ControlModifier, Qt::Key_W), this),
            &QShortcut::activated, this, &QWidget::close);
}

void MainWindow::present() {
    ui::present(*this, windowFacilities_);
}

} // namespace orlune
