#pragma once

#include "ports/UserDefaults.hpp"

namespace sentrel::mac {

/// The application's standard user defaults.
class MacUserDefaults final : public ports::UserDefaults {
public:
    [[nodiscard]] std::optional<Bytes> data(const std::string& key) override;
    void setData(const std::string& key, BytesView value) override;
    [[nodiscard]] std::optional<std::string> text(const std::string& key) override;
    void setText(const std::string& key, const std::string& value) override;
    [[nodiscard]] std::optional<std::vector<std::string>> texts(const std::string& key) override;
    void setTexts(const std::string& key, const std::vector<std::string>& value) override;
    [[nodiscard]] std::optional<std::int64_t> integer(const std::string& key) override;
    void setInteger(const std::string& key, std::int64_t value) override;
    void remove(const std::string& key) override;
};

} // namespace sentrel::mac
