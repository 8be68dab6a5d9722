#include "overlay/OverlayWindowController.h"

#include "overlay/OverlayPanel.h"

#include <QPointer>
#include <QTimer>
#include <boost/asio/post.hpp>

#include <algorithm>
#include <chrono>

namespace orlune {

namespace {

using namespace std::chrono_literals;

/// The distance between the lower edges of the panel and the usable area.
constexpr double restingHeight = 28;

constexpr auto showDuration = 160ms;
constexpr double settlesFrom = -5;

constexpr auto hideDuration = 120ms;
constexpr double sinksTo = -4;

} // namespace

std::optional<Point> panelOrigin(Screens& screens, QSize panel, double offset) {
    const auto all = screens.all();
    const auto pointer = screens.pointerLocation();
    const auto under = std::ranges::find_if(
        all, [&](const Screen& screen) { return screen.frame.contains(pointer); });
    const auto screen = under != all.end() ? std::optional(*under) : screens.main();
    if (!screen) {
        return std::nullopt;
    }
    const auto& visible = screen->visibleFrame;
    return Point{visible.x + (visible.width - panel.width()) / 2,
                 visible.y + visible.height - restingHeight - offset - panel.height()};
}

OverlayWindowController::OverlayWindowController(std::shared_ptr<AppState> state,
                                                 const Platform& platform)
    : screens_(platform.screens), panel_(std::make_unique<OverlayPanel>(state, platform)) {
    panel_->setWindowOpacity(0);
    const auto deliver = [main = platform.mainActor.executor(),
                          controller = QPointer(this)](const AppState::Phase& phase) {
        // In a later turn, when the phase is stored.
        boost::asio::post(main, [controller, phase] {
            if (controller) {
                controller->receive(phase);
            }
        });
    };
    deliver(state->phase());
    cancellable_ = state->phase().subscribe([deliver, last = std::optional(state->phase().get())](
                                                const AppState::Phase& phase) mutable {
        if (last != phase) {
            last = phase;
            deliver(phase);
        }
    });
}

OverlayWindowController::~OverlayWindowController() = default;

void OverlayWindowController::receive(const AppState::Phase& phase) {
    if (phase.is(AppState::Phase::Case::idle)) {
        hide();
        return;
    }
    const auto size = OverlayView::size(phase);
    if (panel_->size() != size) {
        panel_->setFixedSize(size);
    }
    show();
}

void OverlayWindowController::positionPanel(double offset, bool animated) {
    const auto origin = panelOrigin(screens_, panel_->size(), offset);
    if (!origin) {
        return;
    }
    targetOrigin_ = QPointF(origin->x, origin->y).toPoint();
    if (!animated) {
        panel_->move(targetOrigin_);
    }
}

void OverlayWindowController::show() {
    positionPanel(settlesFrom, /*animated=*/false);
    panel_->content().refresh();
    panel_->orderFront();
    positionPanel(0, /*animated=*/true);
    animate(showDuration, ui::cubicBezier({0.2, 0.9}, {0.25, 1.0}), /*opacity=*/1);
}

void OverlayWindowController::hide() {
    if (!panel_->isVisible()) {
        return;
    }
    positionPanel(sinksTo, /*animated=*/true);
    animate(hideDuration, ui::easeIn(), /*opacity=*/0);
    // Hides the panel whatever phase was reached meanwhile.
    QTimer::singleShot(hideDuration, panel_.get(), [panel = panel_.get()] { panel->orderOut(); });
}

void OverlayWindowController::animate(std::chrono::milliseconds duration, const QEasingCurve& curve,
                                      double opacity) {
    const QPointF fromOrigin = panel_->pos();
    const QPointF toOrigin = targetOrigin_;
    const double fromOpacity = panel_->windowOpacity();
    animation_.run(duration, curve, [=, this](double progress) {
        panel_->move((fromOrigin + (toOrigin - fromOrigin) * progress).toPoint());
        panel_->setWindowOpacity(fromOpacity + (opacity - fromOpacity) * progress);
    });
}

} // namespace orlune
