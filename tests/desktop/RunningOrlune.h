// Orlune in the background, with its own key and settings, and a speech service that recognises the
// same words each time. Main thread; waiting runs Qt's loop.
#pragma once

#include "tests/desktop/Commands.h"
#include "tests/desktop/OwnProgram.h"
#include "tests/desktop/SpeechService.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace orlune::desktop {

class RunningOrlune {
  public:
    static constexpr auto understoodWords = "Rename the button.";

    /// The service takes `pause` seconds to recognise the words.
    explicit RunningOrlune(double pause = 0);
    /// Removes the key.
    ~RunningOrlune();
    RunningOrlune(const RunningOrlune&) = delete;
    RunningOrlune& operator=(const RunningOrlune&) = delete;

    /// Returns when the program is idle.
    void start();
    void restart();
    OwnProgram& program() { return *program_; }

    /// Whether `orlune` with this argument succeeds.
    [[nodiscard]] bool does(const std::string& command);
    /// A member of the output of `orlune status --json`, as text.
    static std::string status(const std::string& member) { return statusMember(member); }
    static std::string phase() { return desktop::phase(); }
    /// The folder with its settings.
    std::filesystem::path settings() const { return folder_.path() / "app.orlune.Orlune"; }
    [[nodiscard]] testing::AssertionResult reaches(const std::string& phase);

  private:
    static constexpr auto key = "any-key";

    const test::TemporaryFolder folder_;
    SpeechService service_;
    std::optional<OwnProgram> program_;
};

/// The title of the front window.
std::string activeWindowTitle();

} // namespace orlune::desktop
