#pragma once

#include "ports/UserDefaults.hpp"

#include <functional>
#include <map>
#include <mutex>
#include <variant>

namespace sentrel::test {

/// User defaults without a disk. Any thread.
class MemoryDefaults final : public ports::UserDefaults {
public:
    /// Called before each removal, and before each change.
    std::function<void()> onRemove = [] {};
    std::function<void()> onSet = [] {};

    [[nodiscard]] std::optional<Bytes> data(const std::string& key) override { return get<Bytes>(key); }
    void setData(const std::string& key, BytesView value) override { set(key, Bytes(value.begin(), value.end())); }
    [[nodiscard]] std::optional<std::string> text(const std::string& key) override { return get<std::string>(key); }
    void setText(const std::string& key, const std::string& value) override { set(key, value); }
    [[nodiscard]] std::optional<std::vector<std::string>> texts(const std::string& key) override
    {
        return get<std::vector<std::string>>(key);
    }
    void setTexts(const std::string& key, const std::vector<std::string>& value) override { set(key, value); }
    [[nodiscard]] std::optional<std::int64_t> integer(const std::string& key) override
    {
        return get<std::int64_t>(key);
    }
    void setInteger(const std::string& key, std::int64_t value) override { set(key, value); }
    void remove(const std::string& key) override
    {
        onRemove();
        const std::lock_guard guard{mutex_};
        entries_.erase(key);
    }

private:
    using Entry = std::variant<Bytes, std::string, std::vector<std::string>, std::int64_t>;

    template <class Kind> std::optional<Kind> get(const std::string& key)
    {
        const std::lock_guard guard{mutex_};
        const auto found = entries_.find(key);
        const auto* const value = found == entries_.end() ? nullptr : std::get_if<Kind>(&found->second);
        return value != nullptr ? std::optional{*value} : std::nullopt;
    }
    void set(const std::string& key, Entry value)
    {
        onSet();
        const std::lock_guard guard{mutex_};
        entries_[key] = std::move(value);
    }

    std::mutex mutex_;
    std::map<std::string, Entry> entries_;
};

} // namespace sentrel::test
