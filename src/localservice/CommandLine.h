#pragma once

// The arguments of orlune-local-service. A value, read once at start.
// Invalid arguments throw UsageError with a text for the user; unreadable files throw
// std::runtime_error.

#include "localservice/LocalService.h"

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace orlune::localservice {

class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class CommandLine {
  public:
    static const std::string_view help;

    static CommandLine parse(const std::vector<std::string>& arguments);

    bool wantsHelp() const { return wantsHelp_; }
    bool exitsWithParent() const { return exitsWithParent_; }
    /// The service's options. Reads the files that were named.
    LocalService::Options options() const;

  private:
    bool wantsHelp_ = false;
    bool exitsWithParent_ = false;
    std::uint16_t port_ = 0;
    std::string script_;
    std::string model_;
    std::string certificate_;
    std::string privateKey_;
    std::string keyFile_;
};

} // namespace orlune::localservice
