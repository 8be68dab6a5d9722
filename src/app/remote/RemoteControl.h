// The D-Bus interface of the running program: one name, which only one instance can own, and the
// methods that other programs of the session may call. Main thread, with Qt's loop running; the
// handlers are called there. Does nothing without a session bus. What was said never passes through
// it.
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
        /// The program was launched again.
        std::function<void()> reopen;
        /// Returns why a request was refused; none when it was carried out.
        std::function<std::optional<std::string>(RemoteRequest)> perform;
        /// A JSON object about the current state.
        std::function<std::string()> status;
        /// Another program has changed the key in the keyring.
        std::function<void()> keyChanged;
    };
    enum class Claim { granted, anotherRuns, noBus };

    explicit RemoteControl(Handlers handlers);
    ~RemoteControl();
    RemoteControl(const RemoteControl&) = delete;
    RemoteControl& operator=(const RemoteControl&) = delete;

    /// Acquires the name. Calls are answered once the loop runs.
    Claim claim();
    /// Releases the name before it returns, so that the next launch starts a new instance. A `quit`
    /// does this before it is answered.
    void release();

  private:
    class Door;
    std::unique_ptr<Door> door_;
};

} // namespace orlune
