// A keyboard that a test plays: it sends each event to other programs or to our own windows. Logs
// "watch <kind> <mask value>" and "unwatch <kind> <mask value>" with the kind "global" or "local".
#pragma once

#include "platform/KeyMonitorList.h"
#include "platform/memory/MemoryEvents.h"

#include <string>
#include <string_view>
#include <utility>

namespace orlune {

class MemoryKeyEvents final : public KeyEvents {
  public:
    explicit MemoryKeyEvents(MemoryEvents log = makeMemoryEvents()) : log_(std::move(log)) {}

    [[nodiscard]] KeyEventMonitor addGlobalMonitor(KeyEventMask mask,
                                                   GlobalHandler handler) override;
    [[nodiscard]] KeyEventMonitor addLocalMonitor(KeyEventMask mask, LocalHandler handler) override;
    void watch(const KeyCombination& shortcut) override { watched = shortcut; }
    void watchEscape(bool /*isWanted*/) override {}
    bool reportsReleases() override { return hasReleases; }
    std::string reasonForUnavailability() override { return reason; }
    std::string functionKeyStandIn() override { return standIn; }

    /// A key pressed while another program has the keyboard.
    void sendElsewhere(const KeyEvent& event) const;
    /// A key pressed while one of our windows has the keyboard.
    KeyEventAnswer sendToOwnWindow(const KeyEvent& event) const { return local_.offer(event); }

    const MemoryEvents& log() const { return log_; }

    // The last argument of `watch`.
    KeyCombination watched;
    /// The answer of `reportsReleases`.
    bool hasReleases = true;
    /// While not empty, other programs' keys are not seen.
    std::string reason;
    /// The answer of `functionKeyStandIn`.
    std::string standIn;

  private:
    KeyEventMonitor add(KeyMonitorList& list, std::string_view kind, KeyEventMask mask,
                        LocalHandler handler);

    MemoryEvents log_;
    KeyMonitorList global_;
    KeyMonitorList local_;
};

} // namespace orlune
