// The other ends of a dictation as programs beside a test: the speaker, the speech service over
// TLS, and a sound server that may be killed. The servers throw when they do not come up.
#pragma once

#include "tests/desktop/OwnProgram.h"
#include "tests/support/Certificates.h"
#include "tests/support/TemporaryFolder.h"

#include <optional>
#include <string>

namespace orlune::desktop {

/// `orlune-local-service` with a certificate for localhost, which takes one key alone.
class SpeechService {
  public:
    /// With words it understands these whatever is said. It takes `pause` seconds over them, so
    /// that "Finishing" is seen; the program does not wait longer than 1.8.
    explicit SpeechService(const std::string& key, const std::string& words = {}, double pause = 0);

    /// Where a client finds the service, and whom it trusts.
    OwnProgram::Environment clientEnvironment() const;
    /// A file with an authority that has nothing to do with the service.
    std::string strangersAuthority() const { return folder_.path() / "stranger.pem"; }

    std::string visibleToOthers() const { return program_->visibleToOthers(); }
    /// All it has written so far.
    std::string outputs() { return program_->standardOutput() + program_->standardError(); }

  private:
    test::TemporaryFolder folder_;
    std::optional<OwnProgram> program_;
    std::string port_;
};

/// The recogniser understands this sentence of this voice in any room.
inline constexpr auto spokenSentence = "The weather is nice today and we should go for a walk.";

/// The synthetic voice as a file, and into the microphone.
class Speaker {
  public:
    Speaker();
    std::string file() const { return folder_.path() / "speech.wav"; }
    /// Returns when the sentence has been spoken. `server` leads to another sound server.
    void speak(const OwnProgram::Environment& server = {}) const;

  private:
    test::TemporaryFolder folder_;
};

/// What the session's sound server says of everybody who listens; empty when nobody does.
std::string recordings();

/// A sound server beside the session's own, whose microphone is `vmic` too.
class SoundServer {
  public:
    SoundServer();

    OwnProgram::Environment clientEnvironment() const;
    /// As a crash would.
    void kill() const;

  private:
    test::TemporaryFolder folder_;
    std::optional<OwnProgram> program_;
};

} // namespace orlune::desktop
