#include "ui/Visibility.h"

#include <QEvent>
#include <QWidget>

#include <utility>

namespace orlune::ui {

Visibility::Visibility(QWidget& view, std::function<void(bool)> changed)
    : view_(view), changed_(std::move(changed)) {
    view_.installEventFilter(this);
}

bool Visibility::eventFilter(QObject* watched, QEvent* event) {
    const auto type = event->type();
    if (type == QEvent::Show) {
        window_ = view_.window()->windowHandle();
        if (window_) {
            window_->installEventFilter(this);
        }
    }
    if (type == QEvent::Show || type == QEvent::Hide || type == QEvent::Expose) {
        // A minimised window stays visible for Qt, but is no longer exposed.
        const bool isSeen = view_.isVisible() && window_ && window_->isExposed();
        if (isSeen != std::exchange(isSeen_, isSeen)) {
            changed_(isSeen);
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace orlune::ui
