#pragma once

#include "foundation/Bytes.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sentrel::ports {

/// A user-defaults domain. Any thread.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// The data under a key; none when there is no entry or it is not data.
    [[nodiscard]] virtual std::optional<Bytes> data(const std::string& key) = 0;
    virtual void setData(const std::string& key, BytesView value) = 0;

    /// The text under a key; none when there is no entry or it is not a text.
    [[nodiscard]] virtual std::optional<std::string> text(const std::string& key) = 0;
    virtual void setText(const std::string& key, const std::string& value) = 0;

    /// The texts under a key; none when there is no entry, it is not an array, or one of its elements is not a text.
    [[nodiscard]] virtual std::optional<std::vector<std::string>> texts(const std::string& key) = 0;
    virtual void setTexts(const std::string& key, const std::vector<std::string>& value) = 0;

    /// The integer under a key; none when there is no entry or it is not a whole number.
    [[nodiscard]] virtual std::optional<std::int64_t> integer(const std::string& key) = 0;
    virtual void setInteger(const std::string& key, std::int64_t value) = 0;

    virtual void remove(const std::string& key) = 0;
};

} // namespace sentrel::ports
