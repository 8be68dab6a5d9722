// User defaults that exist only as long as this object.
#pragma once

#include "platform/UserDefaults.h"

#include <functional>
#include <map>
#include <utility>

namespace orlune {

class MemoryUserDefaults final : public UserDefaults {
  public:
    std::optional<Value> object(std::string_view key) const override {
        const auto entry = values.find(key);
        return entry == values.end() ? std::nullopt : std::optional(entry->second);
    }
    void set(std::string_view key, Value value) override {
        log.push_back("set " + std::string(key));
        values.insert_or_assign(std::string(key), std::move(value));
    }
    void remove(std::string_view key) override {
        log.push_back("remove " + std::string(key));
        values.erase(std::string(key));
    }

    std::map<std::string, Value, std::less<>> values;
    /// "set key" and "remove key", in order.
    std::vector<std::string> log;
};

} // namespace orlune
