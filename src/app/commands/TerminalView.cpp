#include "app/commands/TerminalView.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <functional>
#include <unistd.h>

namespace orlune {

namespace {

using Case = AppState::Phase::Case;

constexpr int meterWidth = 10; // columns
constexpr std::string_view eraseLine = "\r\x1b[2K";

/// Eight heights per column, so that ten columns show 80 levels.
std::string meter(double level) {
    constexpr std::array<std::string_view, 8> parts{"▏", "▎", "▍", "▌", "▋", "▊", "▉", "█"};
    const auto steps = static_cast<int>(std::lround(std::clamp(level, 0.0, 1.0) * meterWidth * 8));
    std::string drawn;
    for (int column = 0; column < meterWidth; ++column) {
        const int filled = std::clamp(steps - column * 8, 0, 8);
        drawn += filled == 0 ? " " : parts[static_cast<std::size_t>(filled - 1)];
    }
    return drawn;
}

bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

int characterCount(std::string_view text) {
    return static_cast<int>(std::ranges::count_if(text, std::not_fn(continuesCharacter)));
}

/// The end of the text, at most `characters` long, with a mark in front when it was shortened.
std::string lastCharacters(std::string_view text, int characters) {
    if (characterCount(text) <= characters) {
        return std::string(text);
    }
    auto start = text.size();
    for (int kept = 0; kept < characters - 1 && start > 0; ++kept) {
        do {
            --start;
        } while (start > 0 && continuesCharacter(text[start]));
    }
    return "…" + std::string(text.substr(start));
}

/// Recognised text is not trusted: characters that would move the cursor become blanks.
/// Also without those from U+0080 to U+009F, which terminals obey as well.
std::string withoutControls(std::string text, bool keepsLines = false) {
    std::ranges::replace_if(
        text,
        [&](char byte) {
            return (static_cast<unsigned char>(byte) < 0x20 && !(keepsLines && byte == '\n'))
                   || byte == 0x7F;
        },
        ' ');
    for (auto at = text.find('\xC2'); at != std::string::npos; at = text.find('\xC2', at + 1)) {
        if (at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0) {
            text.replace(at, 2, " ");
        }
    }
    return text;
}

} // namespace

std::string terminalLine(const TerminalFrame& frame, int columns) {
    std::string line = withoutControls(frame.status);
    if (frame.phase == Case::listening) {
        line += " " + meter(frame.level);
    }
    if (!frame.transcript.empty() && frame.phase != Case::failure) {
        const int room = columns - characterCount(line) - 3;
        if (room > 0) {
            line += "  " + lastCharacters(withoutControls(frame.transcript), room);
        }
    }
    return line;
}

std::string readable(const IntentCheck& check) {
    std::string text = "Goal\n  " + check.goal + "\n";
    if (!check.requirements.empty()) {
        text += "Requirements\n";
        for (const auto& requirement : check.requirements) {
            text += "  - " + requirement + "\n";
        }
    }
    if (check.potentialGap) {
        text += "Possible gap\n  " + *check.potentialGap + "\n";
    }
    return text;
}

TerminalView::TerminalView(int fileDescriptor, bool redraws, int columns)
    : fileDescriptor_(fileDescriptor), redraws_(redraws), columns_(columns) {}

void TerminalView::show(const TerminalFrame& frame) {
    const std::lock_guard lock(mutex_);
    if (redraws_) {
        auto line = terminalLine(frame, columns_);
        if (line != shown_) {
            write(std::string(eraseLine) + line);
            shown_ = std::move(line);
        }
        return;
    }
    if (frame.status != plainStatus_) {
        plainStatus_ = frame.status;
        write(withoutControls(frame.status) + "\n");
    }
    if (frame.phase == Case::listening && frame.transcript != plainTranscript_) {
        plainTranscript_ = frame.transcript;
        write("  " + withoutControls(frame.transcript) + "\n");
    }
}

void TerminalView::print(std::string_view lines) {
    const std::lock_guard lock(mutex_);
    if (redraws_) {
        write(eraseLine);
        shown_.clear();
    }
    write(withoutControls(std::string(lines), /*keepsLines=*/true));
}

void TerminalView::finish() {
    const std::lock_guard lock(mutex_);
    if (redraws_ && !shown_.empty()) {
        write("\n");
        shown_.clear();
    }
}

void TerminalView::write(std::string_view text) const {
    while (!text.empty()) {
        const auto written = ::write(fileDescriptor_, text.data(), text.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return; // the reader has gone; the dictation itself continues
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

} // namespace orlune
