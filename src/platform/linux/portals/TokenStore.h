// The tokens with which portals recognise a consent that was given before. They are kept in the
// program's state folder, readable by the user only, and never logged. Main thread.
#pragma once

#include "platform/linux/storage/SettingsFile.h"

#include <filesystem>
#include <string>

namespace orlune {

class TokenStore {
  public:
    /// `folder` may be empty: then nothing is remembered beyond this run.
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
