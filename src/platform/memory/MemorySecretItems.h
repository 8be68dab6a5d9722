// A store of secrets in memory with a log of what was asked of it. Each operation can be told to
// fail. It lives as long as its owner, so secrets do not outlive the process.
#pragma once

#include "platform/SecretItems.h"

#include <vector>

namespace orlune {

class MemorySecretItems final : public SecretItems {
  public:
    struct Item {
        SecretItemQuery query;
        std::string data;
        SecretAccessibility accessibility;
    };

    Match copyMatching(const SecretItemQuery& query) override;
    void checkPresence(const SecretItemQuery& query, PresenceHandler handler) override;
    SecretStatus add(const SecretItemQuery& query, std::string_view data,
                     SecretAccessibility accessibility) override;
    SecretStatus remove(const SecretItemQuery& query) override;

    /// What the next calls answer instead of doing their work, until set to success again.
    SecretStatus copyMatchingStatus; ///< of checkPresence too
    SecretStatus addStatus;
    SecretStatus removeStatus;

    std::vector<Item> items;
    /// "copyMatching service/account" and so on, in order; never the data.
    std::vector<std::string> log;

  private:
    void record(std::string_view operation, const SecretItemQuery& query);
};

} // namespace orlune
