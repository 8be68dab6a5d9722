// The environment of a dictation as separate programs: the speaker, the speech service over TLS,
// and a sound server that can be killed. The servers throw when they do not start.
#pragma once

#include "tests/desktop/OwnProgram.h"
#include "tests/support/Certificates.h"
#include "tests/support/TemporaryFolder.h"

#include <optional>
#include <string>

namespace orlune::desktop {

/// `orlune-local-service` with a certificate for localhost; accepts only one key.
class SpeechService {
  public:
    /// If `words` is not empty, it recognises these whatever is said. It takes `pause` seconds for
    /// that, so that "Finishing" can be observed; the program waits at most 1.8 s.
    explicit SpeechService(const std::string& key, const std::string& words = {}, double pause = 0);

    /// The address and the trusted authority for a client.
    OwnProgram::Environment clientEnvironment() const;
    /// A file with an authority that did not sign the service's certificate.
    std::string strangersAuthority() const { return folder_.path() / "stranger.pem"; }

    std::string visibleToOthers() const { return program_->visibleToOthers(); }
    /// All its output so far.
    std::string outputs() { return program_->standardOutput() + program_->standardError(); }

  private:
    test::TemporaryFolder folder_;
    std::optional<OwnProgram> program_;
    std::string port_;
};

/// A sentence that the recogniser understands with this voice in any room.
inline constexpr auto spokenSentence = "The weather is nice today and we should go for a walk.";

/// The synthetic voice, as a file and into the microphone.
class Speaker {
  public:
    Speaker();
    std::string file() const { return folder_.path() / "speech.wav"; }
    /// Returns when the sentence has been spoken. `server` selects another sound server.
    void speak(const OwnProgram::Environment& server = {}) const;

  private:
    test::TemporaryFolder folder_;
};

/// The session's sound server's list of recordings; empty when there are none.
std::string recordings();

/// A second sound server, whose microphone is also called `vmic`.
class SoundServer {
  public:
    SoundServer();

    OwnProgram::Environment clientEnvironment() const;
    /// Simulates a crash.
    void kill() const;

  private:
    test::TemporaryFolder folder_;
    std::optional<OwnProgram> program_;
};

} // namespace orlune::desktop
