#include "platform/linux/TerminalWindows.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace orlune {

namespace {

constexpr auto known = std::to_array<std::string_view>({
    "Alacritty",
    "Deepin-terminal",
    "Eterm",
    "Gnome-terminal",
    "Guake",
    "Io.elementary.terminal",
    "Kitty",
    "Konsole",
    "Lxterminal",
    "Mate-terminal",
    "Qterminal",
    "Roxterm",
    "Sakura",
    "Terminator",
    "Terminology",
    "Termite",
    "Tilda",
    "Tilix",
    "URxvt",
    "UXTerm",
    "XTerm",
    "Xfce4-terminal",
    "alacritty",
    "aterm",
    "com.gexperts.Tilix",
    "com.mitchellh.ghostty",
    "com.raggesilver.BlackBox",
    "contour",
    "cool-retro-term",
    "deepin-terminal",
    "foot",
    "footclient",
    "ghostty",
    "gnome-terminal",
    "gnome-terminal-server",
    "guake",
    "io.elementary.terminal",
    "kgx",
    "kitty",
    "konsole",
    "lxterminal",
    "mate-terminal",
    "mlterm",
    "org.codeberg.dnkl.foot",
    "org.contourterminal.Contour",
    "org.gnome.Console",
    "org.gnome.Ptyxis",
    "org.gnome.Terminal",
    "org.kde.konsole",
    "org.kde.yakuake",
    "org.wezfurlong.wezterm",
    "ptyxis",
    "qterminal",
    "rio",
    "rxvt",
    "sakura",
    "st",
    "st-256color",
    "stterm",
    "stterm-256color",
    "terminator",
    "terminology",
    "termite",
    "tilda",
    "tilix",
    "urxvt",
    "uxterm",
    "wezterm",
    "xfce4-terminal",
    "xterm",
    "yakuake",
});

} // namespace

TerminalWindows::TerminalWindows(std::vector<std::string> additional)
    : additional_(std::move(additional)) {}

bool TerminalWindows::include(const WindowClass& window) const {
    const auto isListed = [this](const std::string& name) {
        return !name.empty()
               && (std::ranges::find(known, name) != known.end()
                   || std::ranges::find(additional_, name) != additional_.end());
    };
    return isListed(window.instanceName) || isListed(window.className);
}

} // namespace orlune
