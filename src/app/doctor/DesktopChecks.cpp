#include "app/doctor/DesktopChecks.h"

#include "platform/linux/x11/KeyAccess.h"

#include <string_view>

namespace orlune {

namespace {

using State = Finding::State;

constexpr auto noDisplay = "there is no X display";

std::string variable(const Environment& environment, std::string_view name) {
    const auto entry = environment.find(name);
    return entry == environment.end() ? std::string() : entry->second;
}

bool isWayland(const DesktopFacts& facts) {
    return facts.wayland || (facts.display && facts.display->isXwayland)
           || !variable(facts.environment, "WAYLAND_DISPLAY").empty();
}

Finding session(const DesktopFacts& facts) {
    constexpr auto name = "session";
    if (!facts.display) {
        return {name, State::fail, noDisplay, noDisplayReason};
    }
    std::string found = isWayland(facts) ? "Wayland, through Xwayland" : "X11";
    const auto& manager = facts.display->windowManager;
    found += ", " + (manager.empty() ? "no window manager" : manager);
    if (const auto desktop = variable(facts.environment, "XDG_CURRENT_DESKTOP"); !desktop.empty()) {
        found += " (" + desktop + ")";
    }
    found += facts.display->isCompositing ? ", compositing" : ", no compositor";
    return {name, State::ok, found};
}

Finding keyObservation(const DesktopFacts& facts) {
    constexpr auto name = "seeing the shortcut";
    if (!facts.display) {
        return {name, State::fail, noDisplay, "Start it inside a graphical session."};
    }
    if (const auto& reason = facts.display->whyKeysAreNotSeen; !reason.empty()) {
        return {name, State::fail, "keys of other programs cannot be seen", reason};
    }
    if (facts.hasSway) {
        return {name, State::ok,
                "in every program, by bindings of sway; Fn is \"" + facts.functionKeyName + "\""};
    }
    if (facts.hasGlobalAccel) {
        return {name, State::ok,
                "in every program, by KGlobalAccel; Fn is \"" + facts.functionKeyName + "\""};
    }
    if (facts.hasPortalShortcut.value_or(false)) {
        return {name, State::ok, "in every program, by the GlobalShortcuts portal"};
    }
    if (facts.hasPortalShortcut) {
        return {
            name, State::warning, "not before you allow it",
            "Choose a key without modifiers, such as F9: this desktop loses the release of "
            "others. Then open Accessibility in the settings of Orlune: the desktop asks once."};
    }
    if (isWayland(facts)) {
        return {name, State::warning, "only while an X11 window has the keyboard",
                "Bind a shortcut of your desktop to \"orlune toggle\", which works everywhere, or "
                "log in to an X11 session."};
    }
    if (!facts.display->hasFunctionKey) {
        return {name, State::warning,
                "no key of this keyboard is called \"" + facts.functionKeyName + "\"",
                "Name one that stands in for Fn as \"fnKey\" in platform.json, or choose a "
                "shortcut without Fn."};
    }
    return {name, State::ok, "in every program; Fn is also \"" + facts.functionKeyName + "\""};
}

Finding keyPosting(const DesktopFacts& facts) {
    constexpr auto name = "pasting";
    if (!facts.display) {
        return {name, State::fail, noDisplay, "Start it inside a graphical session."};
    }
    if (facts.wayland && facts.wayland->hasVirtualKeyboard) {
        return {name, State::ok, "into every program, by a virtual keyboard"};
    }
    if (facts.wayland && facts.hasPortal) {
        if (facts.isPastingAllowed) {
            return {name, State::ok, "into every program, through the RemoteDesktop portal"};
        }
        return {name, State::warning, "not before you allow it",
                "Open Accessibility in the settings of Orlune: the desktop asks once."};
    }
    if (const auto& reason = facts.display->whyKeysAreNotPosted; !reason.empty()) {
        return {name, State::fail, "keys cannot be pressed in other programs", reason};
    }
    if (isWayland(facts)) {
        return {name, State::warning, "into X11 windows",
                "Wayland windows may not take it: the text is on the clipboard, paste it there by "
                "hand."};
    }
    return {name, State::ok, "into every program"};
}

Finding clipboard(const DesktopFacts& facts) {
    constexpr auto name = "clipboard";
    if (!facts.display) {
        return {name, State::fail, noDisplay, "Start it inside a graphical session."};
    }
    if (facts.wayland && facts.wayland->hasDataControl) {
        return {name, State::ok, "by data control: the text is there for as long as Orlune runs"};
    }
    return {name, State::ok,
            facts.display->hasClipboardManager
                ? "with a clipboard manager, which keeps the text after Orlune has ended"
                : "without a clipboard manager: the text is there for as long as Orlune runs"};
}

Finding tray(const DesktopFacts& facts) {
    constexpr auto name = "tray";
    if (facts.hasTrayHost) {
        return {name, State::ok, "StatusNotifierItem"};
    }
    if (facts.display && facts.display->hasTray) {
        return {name, State::ok, "XEmbed"};
    }
    return {name, State::warning, "there is none",
            "On GNOME, install and enable the extension AppIndicator. Without a tray, start Orlune "
            "once more to open its window."};
}

} // namespace

Findings checkDesktop(const DesktopFacts& facts) {
    return {session(facts), keyObservation(facts), keyPosting(facts), clipboard(facts),
            tray(facts)};
}

} // namespace orlune
