// The tokens by which portals recognise an earlier consent. They are stored in the program's state
// folder, readable only by the user, and never logged. Main thread.
#pragma once

#include "platform/linux/storage/SettingsFile.h"

#include <filesystem>
#include <string>

namespace orlune {

class TokenStore {
  public:
    /// When `folder` is empty, nothing is stored beyond this run.
    TokenStore(const std::filesystem::path& folder, const std::string& name);

    /// Empty when there is none.
    const std::string& token() const { return token_; }
    void set(std::string token);
    void forget() { set({}); }

  private:
    SettingsFile file_;
    std::string token_;
};

} // namespace orlune
