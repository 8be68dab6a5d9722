// Key events of the desktop, seen without a grab: raw X keys say what happens, whoever has the
// keyboard, and a filter on our own windows keeps from them what a local monitor swallows. Main
// thread, with Qt's loop running and before its application ends. Nothing is opened before the
// first monitor or question; without a usable display, global monitors see nothing and a reason
// says why.
#pragma once

#include "platform/KeyMonitorList.h"
#include "platform/Log.h"
#include "platform/linux/keys/KeyEdges.h"
#include "platform/linux/keys/LocalKeyFilter.h"
#include "platform/linux/keys/RawKeyWatch.h"
#include "platform/linux/keys/ShortcutSource.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QTimer;

namespace orlune {

class DesktopKeyEvents final : public KeyEvents {
  public:
    using Keycode = KeyEdges::Keycode; ///< X's, not the virtual ones

    struct Surroundings {
        /// The symbol of the key that stands in for Fn, such as "Control_R".
        std::string functionKeyName;
        /// Whether one of our own windows has the keyboard now.
        std::function<bool()> ownWindowHasKeyboard;
        /// Reports the keys of other programs where X does not see them: in Wayland sessions. Our
        /// own windows are X windows there too. None: raw keys do. Outlives this object.
        ShortcutSource* source = nullptr;
        /// An answer of the source may have changed. May be empty.
        std::function<void()> onSourceChange = {};
        /// Empty means the DISPLAY of the environment.
        std::string displayName = {};
    };

    DesktopKeyEvents(Surroundings surroundings, Log& log);
    ~DesktopKeyEvents() override;

    [[nodiscard]] KeyEventMonitor addGlobalMonitor(KeyEventMask mask,
                                                   GlobalHandler handler) override;
    [[nodiscard]] KeyEventMonitor addLocalMonitor(KeyEventMask mask, LocalHandler handler) override;
    void watch(const KeyCombination& shortcut) override;
    void watchEscape(bool isWanted) override;
    bool reportsReleases() override;
    std::string reasonForUnavailability() override;
    std::string functionKeyStandIn() override;

    // For whoever posts keys: between the first two, synthetic keys are ours and not told. Before
    // and after, they are the user's, who may sit at a remote desktop.
    void willPost();
    void didPost();
    /// The user still holds these keys, but every program was told that they came up.
    void countAsReleased(const std::vector<Keycode>& keys);

    /// Whether the user holds keys, as far as they are seen.
    bool areKeysHeld() const { return edges_.isAnyDown() || isSourceKeyHeld_; }

    /// While the screen is locked no key is told; locking lets go of all that is down.
    void setLocked(bool isLocked);

  private:
    struct Answers {
        KeyEventAnswer press = KeyEventAnswer::passOn;
        KeyEventAnswer release = KeyEventAnswer::passOn;
        /// The window was asked about for this press; whatever else it receives of it repeats.
        bool isPressReceived = false;
    };

    /// None where raw keys are what there is.
    ShortcutSource* source() const;
    bool connect();
    void resolveRoles();
    void receive(const RawKeyWatch::Key& key);
    void enqueue(Keycode keycode, bool isDown);
    void tell(const KeyEdges::Edge& edge);
    void reportFromSource(const KeyEvent& event);
    void checkHeldKeys();
    void watchHeldKeys();
    KeyEventAnswer answerFor(const LocalKeyFilter::Key& key);

    Surroundings surroundings_;
    Logger log_;
    KeyMonitorList global_;
    KeyMonitorList local_;
    KeyEdges edges_;
    std::optional<Keycode> functionKey_;
    bool isFunctionKeyMissing_ = false;
    /// What was said about a key when it last went down and up in one of our windows.
    std::map<Keycode, Answers> answers_;
    bool isSourceKeyHeld_ = false;
    bool isPosting_ = false;
    bool isLocked_ = false;
    /// A handler may post keys, which reads further events: they wait until it has returned.
    std::deque<RawKeyWatch::Key> queue_;
    bool isTelling_ = false;

    std::unique_ptr<RawKeyWatch> watch_;
    std::unique_ptr<QTimer> heldKeysTimer_;
    std::unique_ptr<QTimer> layoutTimer_;
    std::unique_ptr<LocalKeyFilter> filter_;
};

} // namespace orlune
