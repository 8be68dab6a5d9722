// The user's settings: typed values under string keys, each written immediately and atomically.
// Main actor.
// A value of another type reads as absent. A failed write is logged and not thrown.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace orlune {

class UserDefaults {
  public:
    using Data = std::vector<std::byte>;
    using Value = std::variant<bool, std::int64_t, double, std::string, Data>;

    virtual ~UserDefaults() = default;

    virtual std::optional<Value> object(std::string_view key) const = 0;
    virtual void set(std::string_view key, Value value) = 0;
    virtual void remove(std::string_view key) = 0;

    std::optional<std::string> string(std::string_view key) const { return get<std::string>(key); }
    std::optional<Data> data(std::string_view key) const { return get<Data>(key); }
    std::optional<bool> boolean(std::string_view key) const { return get<bool>(key); }

  private:
    template <typename Type>
    std::optional<Type> get(std::string_view key) const {
        auto value = object(key);
        auto* typed = value ? std::get_if<Type>(&*value) : nullptr;
        return typed ? std::optional<Type>(std::move(*typed)) : std::nullopt;
    }
};

} // namespace orlune
