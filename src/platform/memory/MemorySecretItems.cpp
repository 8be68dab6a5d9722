#include "platform/memory/MemorySecretItems.h"

#include <algorithm>

namespace orlune {

namespace {

auto matches(const SecretItemQuery& query) {
    return [&query](const MemorySecretItems::Item& item) {
        return item.query.service == query.service && item.query.account == query.account;
    };
}

} // namespace

SecretItems::Match MemorySecretItems::copyMatching(const SecretItemQuery& query) {
    record("copyMatching", query);
    if (!copyMatchingStatus.isSuccess()) {
        return {copyMatchingStatus, std::nullopt};
    }
    const auto item = std::find_if(items.begin(), items.end(), matches(query));
    if (item == items.end()) {
        return {{SecretStatus::Code::itemNotFound, "There is no such item."}, std::nullopt};
    }
    return {{}, item->data};
}

void MemorySecretItems::checkPresence(const SecretItemQuery& query, PresenceHandler handler) {
    record("checkPresence", query);
    if (!copyMatchingStatus.isSuccess()) {
        handler(Presence::unknown);
        return;
    }
    const auto item = std::ranges::find_if(items, matches(query));
    handler(item != items.end() && !item->data.empty() ? Presence::present : Presence::absent);
}

SecretStatus MemorySecretItems::add(const SecretItemQuery& query, std::string_view data,
                                    SecretAccessibility accessibility) {
    record("add", query);
    if (!addStatus.isSuccess()) {
        return addStatus;
    }
    if (std::any_of(items.begin(), items.end(), matches(query))) {
        return {SecretStatus::Code::duplicateItem, "There is such an item already."};
    }
    items.push_back({query, std::string(data), accessibility});
    return {};
}

SecretStatus MemorySecretItems::remove(const SecretItemQuery& query) {
    record("remove", query);
    if (!removeStatus.isSuccess()) {
        return removeStatus;
    }
    if (std::erase_if(items, matches(query)) == 0) {
        return {SecretStatus::Code::itemNotFound, "There is no such item."};
    }
    return {};
}

void MemorySecretItems::record(std::string_view operation, const SecretItemQuery& query) {
    log.push_back(std::string(operation) + " " + query.service + "/" + query.account);
}

} // namespace orlune
