#include "platform/linux/paste/PasteKeys.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace orlune {

namespace {

using Chord = PasteKeys::Chord;

struct Row {
    std::string_view windowClass;
    Chord chord = Chord::shiftInsert;
};

constexpr auto known = std::to_array<Row>({
    {"Alacritty"},
    {"Deepin-terminal"},
    {"Emacs"},
    {"Eterm"},
    {"Gnome-terminal"},
    {"Guake"},
    {"Gvim"},
    {"Io.elementary.terminal"},
    {"Kitty"},
    {"Konsole"},
    {"Lxterminal"},
    {"Mate-terminal"},
    {"Qterminal"},
    {"Roxterm"},
    {"Sakura"},
    {"Terminator"},
    {"Terminology"},
    {"Termite"},
    {"Tilda"},
    {"Tilix"},
    {"URxvt"},
    {"UXTerm"},
    {"XTerm"},
    {"Xfce4-terminal"},
    {"alacritty"},
    {"aterm"},
    {"com.gexperts.Tilix"},
    {"com.mitchellh.ghostty"},
    {"com.raggesilver.BlackBox"},
    {"contour"},
    {"cool-retro-term", Chord::controlShiftV},
    {"deepin-terminal"},
    {"emacs"},
    {"foot"},
    {"footclient"},
    {"ghostty"},
    {"gnome-terminal"},
    {"gnome-terminal-server"},
    {"guake"},
    {"gvim"},
    {"io.elementary.terminal"},
    {"kgx"},
    {"kitty"},
    {"konsole"},
    {"lxterminal"},
    {"mate-terminal"},
    {"mlterm"},
    {"org.codeberg.dnkl.foot"},
    {"org.contourterminal.Contour"},
    {"org.gnome.Console"},
    {"org.gnome.Ptyxis"},
    {"org.gnome.Terminal"},
    {"org.kde.konsole"},
    {"org.kde.yakuake"},
    {"org.wezfurlong.wezterm"},
    {"ptyxis"},
    {"qterminal"},
    {"rio"},
    {"rxvt"},
    {"sakura"},
    {"st"},
    {"st-256color"},
    {"stterm"},
    {"stterm-256color"},
    {"terminator"},
    {"terminology"},
    {"termite"},
    {"tilda"},
    {"tilix"},
    {"urxvt"},
    {"uxterm"},
    {"wezterm"},
    {"xfce4-terminal"},
    {"xterm"},
    {"yakuake"},
});

} // namespace

PasteKeys::PasteKeys(std::vector<std::string> additional) : additional_(std::move(additional)) {}

PasteKeys::Chord PasteKeys::of(const WindowClass& window) const {
    for (const auto& name : {window.instanceName, window.className}) {
        if (name.empty()) {
            continue;
        }
        if (std::ranges::find(additional_, name) != additional_.end()) {
            return Chord::shiftInsert;
        }
        const auto* row = std::ranges::find(known, name, &Row::windowClass);
        if (row != known.end()) {
            return row->chord;
        }
    }
    return Chord::controlV;
}

} // namespace orlune
