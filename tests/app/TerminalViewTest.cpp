#include "app/commands/TerminalView.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace orlune {
namespace {

using Case = AppState::Phase::Case;

TEST(TerminalLineTest, showsStatusMeterAndTheEndOfTheTranscript) {
    struct Row {
        const char* name;
        TerminalFrame frame;
        int columns;
        const char* expected;
    };
    const Row rows[] = {
        {"connecting",
         {Case::processing, "Connecting securely", 0.5, ""},
         80,
         "Connecting securely"},
        {"silence", {Case::listening, "Listening", 0, ""}, 80, "Listening           "},
        {"full level", {Case::listening, "Listening", 1, "hi"}, 80, "Listening ██████████  hi"},
        {"half a column", {Case::listening, "Listening", 0.05, ""}, 80, "Listening ▌         "},
        {"a level above one", {Case::listening, "L", 7, ""}, 80, "L ██████████"},
        {"too long keeps the end", {Case::processing, "Go", 0, "one two three"}, 12, "Go  … three"},
        {"cut between characters", {Case::processing, "Go", 0, "ääääääääää"}, 10, "Go  …ääää"},
        {"no room at all", {Case::processing, "Finishing", 0, "text"}, 8, "Finishing"},
        {"foreign controls", {Case::processing, "Go", 0, "a\x1b[2J\nb"}, 80, "Go  a [2J b"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(terminalLine(row.frame, row.columns), row.expected) << row.name;
    }
}

std::string written(bool redraws, const std::vector<TerminalFrame>& frames) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    {
        TerminalView view(ends[1], redraws, 40);
        for (const auto& frame : frames) {
            view.show(frame);
        }
        view.print("Goal\u009B 2J\x1b[2J é\n");
    }
    close(ends[1]);
    std::string text(4096, '\0');
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(read(ends[0], text.data(), 4096), 0)));
    close(ends[0]);
    return text;
}

TEST(TerminalViewTest, redrawsInPlaceOnATerminalAndWritesPlainLinesElsewhere) {
    const std::vector<TerminalFrame> frames{
        {Case::processing, "Connecting securely", 0, ""},
        {Case::listening, "Listening", 0, ""},
        {Case::listening, "Listening", 0, "fix"},
        {Case::listening, "Listening", 0, "fix"},
        {Case::listening, "Listening", 0.5, "fix it"},
        {Case::processing, "Finishing", 0, "fix it"},
    };
    EXPECT_EQ(written(/*redraws=*/false, frames),
              "Connecting securely\nListening\n  fix\n  fix it\nFinishing\nGoal  2J [2J é\n");
    EXPECT_EQ(written(/*redraws=*/true, {frames[0], frames[0], frames[5]}),
              "\r\x1b[2KConnecting securely\r\x1b[2KFinishing  fix it\r\x1b[2KGoal  2J [2J é\n");
}

} // namespace
} // namespace orlune
