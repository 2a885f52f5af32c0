#pragma once

#include "foundation/Bytes.hpp"

#include <optional>
#include <string>

namespace sentrel::platform {

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

    virtual void remove(const std::string& key) = 0;
};

} // namespace sentrel::platform
