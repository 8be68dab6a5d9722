// The two permissions that a view shows, as last read: microphone and Accessibility. They are read
// whenever the view appears, when the program becomes active, on request, and each second while
// polling is enabled and the view can be seen; otherwise nothing wakes up. Main actor; a member of
// the view. Nothing here fails.
#pragma once

#include "platform/Platform.h"
#include "platform/concurrency/Published.h"
#include "platform/concurrency/Task.h"
#include "ui/Visibility.h"

#include <QObject>

#include <memory>

namespace orlune {

class PermissionStatus final : public QObject {
  public:
    PermissionStatus(QWidget& view, const Platform& platform);
    ~PermissionStatus() override;

    // Announced only when the value differs. Both are false at first.
    const Published<bool>& microphoneGranted() const;
    const Published<bool>& accessibilityGranted() const;

    void refresh();
    void setPolling(bool isWanted);

    /// Requests the microphone; the answer is shown when it arrives.
    void requestMicrophone();
    /// Shows the user how to grant Accessibility, and reads it again half a second later.
    void requestAccessibility();

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    struct Readings;

    void updatePolling();

    MainActor& mainActor_;
    Clock& clock_;
    CaptureAuthorization& captureAuthorization_;
    Accessibility& accessibility_;
    /// Late answers find it destroyed.
    const std::shared_ptr<Readings> readings_;
    bool isPollingWanted_ = false;
    Task polling_;
    Task rereading_;
    ui::Visibility visibility_;
};

} // namespace orlune
