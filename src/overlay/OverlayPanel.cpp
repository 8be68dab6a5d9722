#include "overlay/OverlayPanel.h"

#include "overlay/GlassCapsule.h"

#include <QPalette>
#include <QRegion>
#include <QVBoxLayout>

#include <utility>

namespace orlune {

OverlayPanel::OverlayPanel(std::shared_ptr<AppState> state, const Platform& platform)
    // Keeps window managers from placing, framing or lowering it under a full-screen window.
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint
                           | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus
                           | Qt::WindowTransparentForInput),
      windowFacilities_(platform.windowFacilities),
      content_(new OverlayView(std::move(state), platform)) {
    setWindowTitle(QStringLiteral("Orlune"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    setFocusPolicy(Qt::NoFocus);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(content_);
    setFixedSize(OverlayView::compactSize);
    // The background of an opaque window, visible behind fading content and along the pixelated
    // edge.
    setPalette(QPalette(GlassCapsule::opaqueGlass()));
    setAttribute(Qt::WA_TranslucentBackground, windowFacilities_.isCompositing().get());
    subscriptions_.push_back(windowFacilities_.isCompositing().subscribe([this](
                                                                             bool isCompositing) {
        // Deferred: the change is announced before it is stored, and a window cannot change its
        // depth.
        QMetaObject::invokeMethod(
            this, [this, isCompositing] { setTranslucent(isCompositing); }, Qt::QueuedConnection);
    }));
    subscriptions_.push_back(windowFacilities_.activeWindowDidChange().connect([this] {
        if (isVisible()) {
            raise();
        }
    }));
}

void OverlayPanel::setTranslucent(bool isTranslucent) {
    if (testAttribute(Qt::WA_TranslucentBackground) == isTranslucent) {
        return;
    }
    const bool wasVisible = isVisible();
    hide();
    destroy(); // a window keeps the depth it was created with
    setAttribute(Qt::WA_TranslucentBackground, isTranslucent);
    setAttribute(Qt::WA_NoSystemBackground, isTranslucent); // Qt sets it, but never resets it
    if (wasVisible) {
        orderFront();
    }
}

void OverlayPanel::orderFront() {
    show();
    raise();
    updateOutline();
}

void OverlayPanel::orderOut() {
    hide();
    destroy();
}

void OverlayPanel::updateOutline() {
    const QRegion outline(content_->outline().toFillPolygon().toPolygon());
    if (!testAttribute(Qt::WA_TranslucentBackground)) {
        setMask(outline);
        return;
    }
    clearMask();
    std::vector<Rect> region;
    for (const auto& part : outline) {
        region.push_back({static_cast<double>(part.x()), static_cast<double>(part.y()),
                          static_cast<double>(part.width()), static_cast<double>(part.height())});
    }
    windowFacilities_.setBlurBehind(winId(), region, devicePixelRatioF());
}

} // namespace orlune
