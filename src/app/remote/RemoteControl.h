// The running program's door for the other programs of the session: one name on D-Bus, which only
// one instance can have, and what may be asked there. Main thread, with Qt's loop running; the
// handlers are called there. Without a session bus it stands closed, and nothing else changes.
// Nothing that was said ever passes through it.
#pragma once

#include "app/remote/RemoteRequest.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace orlune {

class RemoteControl {
  public:
    struct Handlers {
        /// The program was launched once more.
        std::function<void()> reopen;
        /// Returns why a request was turned down; none when it was carried out.
        std::function<std::optional<std::string>(RemoteRequest)> perform;
        /// A JSON object about the present state.
        std::function<std::string()> status;
        /// The key in the keyring was changed from outside.
        std::function<void()> keyChanged;
    };
    enum class Claim { granted, anotherRuns, noBus };

    explicit RemoteControl(Handlers handlers);
    ~RemoteControl();
    RemoteControl(const RemoteControl&) = delete;
    RemoteControl& operator=(const RemoteControl&) = delete;

    /// Takes the name. Calls are answered once the loop runs.
    Claim claim();
    /// Gives the name up, so that the next launch starts anew; done when it returns. A `quit` does
    /// this before it is answered.
    void release();

  private:
    class Door;
    std::unique_ptr<Door> door_;
};

} // namespace orlune
