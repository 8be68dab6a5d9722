#include "settings/PermissionStatus.h"

#include <QEvent>
#include <QGuiApplication>
#include <QWidget>

#include <utility>

namespace orlune {

namespace {

using namespace std::chrono_literals;

constexpr auto pollingInterval = 1s;
/// The user needs a moment to grant it in the prompt.
constexpr auto rereadingDelay = 500ms;

void change(Published<bool>& property, bool value) {
    if (property.get() != value) {
        property.set(value);
    }
}

} // namespace

struct PermissionStatus::Readings final : ObservableObject {
    Readings(CaptureAuthorization& authorization, Accessibility& trust)
        : captureAuthorization(authorization), accessibility(trust) {}

    void read() {
        using Status = CaptureAuthorization::Status;
        change(microphone, captureAuthorization.authorizationStatus() == Status::authorized);
        readAccessibility();
    }
    void readAccessibility() { change(accessibilityTrust, accessibility.isProcessTrusted()); }

    CaptureAuthorization& captureAuthorization;
    Accessibility& accessibility;
    Published<bool> microphone{*this, false};
    Published<bool> accessibilityTrust{*this, false};
};

PermissionStatus::PermissionStatus(QWidget& view, const Platform& platform)
    : mainActor_(platform.mainActor), clock_(platform.clock),
      captureAuthorization_(platform.captureAuthorization), accessibility_(platform.accessibility),
      readings_(std::make_shared<Readings>(captureAuthorization_, accessibility_)),
      visibility_(view, [this](bool /*isSeen*/) { updatePolling(); }) {
    view.installEventFilter(this);
    // The user may return from granting a permission elsewhere.
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this,
            [this](Qt::ApplicationState state) {
                if (state == Qt::ApplicationActive && visibility_.isSeen()) {
                    refresh();
                }
            });
}

PermissionStatus::~PermissionStatus() {
    polling_.cancel();
    rereading_.cancel();
}

const Published<bool>& PermissionStatus::microphoneGranted() const {
    return readings_->microphone;
}

const Published<bool>& PermissionStatus::accessibilityGranted() const {
    return readings_->accessibilityTrust;
}

bool PermissionStatus::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show) {
        refresh(); // before the view is first painted
    }
    return QObject::eventFilter(watched, event);
}

void PermissionStatus::refresh() {
    readings_->read();
    if (captureAuthorization_.authorizationStatus()
        == CaptureAuthorization::Status::notDetermined) {
        requestMicrophone(); // requests the first answer
    }
}

void PermissionStatus::setPolling(bool isWanted) {
    isPollingWanted_ = isWanted;
    updatePolling();
}

void PermissionStatus::updatePolling() {
    const bool runs = isPollingWanted_ && visibility_.isSeen();
    if (!runs) {
        std::exchange(polling_, {}).cancel();
    } else if (!polling_) {
        polling_ = Task::start(mainActor_.executor(),
                               [weakReadings = std::weak_ptr(readings_),
                                &clock = clock_](Task self) -> Awaitable<void> {
                                   while (!self.isCancelled()) {
                                       if (const auto readings = weakReadings.lock()) {
                                           readings->read();
                                       }
                                       auto sleeping = clock.sleep(pollingInterval);
                                       co_await std::move(sleeping);
                                   }
                               });
    }
}

void PermissionStatus::requestMicrophone() {
    captureAuthorization_.requestAccess(
        [weakReadings = std::weak_ptr(readings_), main = mainActor_.executor()](bool isGranted) {
            Task::start(main, [weakReadings, isGranted]() -> Awaitable<void> {
                if (const auto readings = weakReadings.lock()) {
                    change(readings->microphone, isGranted);
                }
                co_return;
            });
        });
}

void PermissionStatus::requestAccessibility() {
    accessibility_.isProcessTrustedWithOptions(/*prompt=*/true);
    rereading_.cancel();
    rereading_ = Task::start(
        mainActor_.executor(),
        [weakReadings = std::weak_ptr(readings_), &clock = clock_]() -> Awaitable<void> {
            auto sleeping = clock.sleep(rereadingDelay);
            co_await std::move(sleeping);
            if (const auto readings = weakReadings.lock()) {
                readings->readAccessibility();
            }
        });
}

} // namespace orlune
