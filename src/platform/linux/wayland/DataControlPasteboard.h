// The clipboard of a Wayland session, owned without a window or the focus, through
// ext_data_control_v1 or its predecessor of wlroots. Each text is offered as the clipboard and as
// the primary selection, because terminals paste the latter. Main thread, with Qt's loop running,
// which serves the programs that paste. When the compositor is gone, texts are refused.
#pragma once

#include "platform/Pasteboard.h"

#include <memory>
#include <string>

namespace orlune {

class WaylandConnection;

class DataControlPasteboard final : public Pasteboard {
  public:
    /// Null when the compositor offers neither protocol. The connection must outlive the
    /// pasteboard.
    static std::unique_ptr<DataControlPasteboard> open(WaylandConnection& connection);
    ~DataControlPasteboard() override;

    /// Does nothing: the text that follows replaces the contents, and clipboard managers refill an
    /// empty clipboard.
    void clearContents() override {}
    bool setString(const std::string& text) override;
    /// Whether the last text that was set is still the primary selection.
    bool ownsPrimarySelection() const;

  private:
    class Device;
    template <typename Protocol>
    class DeviceOf;

    explicit DataControlPasteboard(std::unique_ptr<Device> device);

    std::unique_ptr<Device> device_;
};

} // namespace orlune
