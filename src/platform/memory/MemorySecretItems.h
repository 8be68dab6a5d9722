// A store of secrets in memory, with a log of the calls. Each operation can be set to fail. The
// secrets exist only as long as this object.
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

    /// When not success, the next calls return this instead of doing their work.
    SecretStatus copyMatchingStatus; ///< also of checkPresence
    SecretStatus addStatus;
    SecretStatus removeStatus;

    std::vector<Item> items;
    /// "copyMatching service/account" and so on, in order; never the data.
    std::vector<std::string> log;

  private:
    void record(std::string_view operation, const SecretItemQuery& query);
};

} // namespace orlune
