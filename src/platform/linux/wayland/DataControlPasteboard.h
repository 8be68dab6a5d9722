// The clipboard of a Wayland session, owned without a window or the focus, through
// ext_data_control_v1 or its predecessor of wlroots. Each text is offered as the clipboard and as
// the primary selection, because terminals paste the second one. Main thread, with Qt's loop
// running, which serves the programs that paste. A compositor that is gone is a refusal.
#pragma once

#include "platform/Pasteboard.h"

#include <memory>
#include <string>

namespace orlune {

class WaylandConnection;

class DataControlPasteboard final : public Pasteboard {
  public:
    /// None where the compositor offers neither protocol. The connection outlives the pasteboard.
    static std::unique_ptr<DataControlPasteboard> open(WaylandConnection& connection);
    ~DataControlPasteboard() override;

    /// Nothing happens by itself: the text that follows replaces what is there, and clipboard
    /// managers refill an empty clipboard.
    void clearContents() override {}
    bool setString(const std::string& text) override;
    /// Whether the text set last is still the primary selection.
    bool ownsPrimarySelection() const;

  private:
    class Device;
    template <typename Protocol>
    class DeviceOf;

    explicit DataControlPasteboard(std::unique_ptr<Device> device);

    std::unique_ptr<Device> device_;
};

} // namespace orlune
