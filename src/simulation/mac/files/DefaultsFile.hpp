#pragma once

#include "foundation/Json.hpp"
#include "ports/FileSystem.hpp"
#include "ports/Journal.hpp"
#include "ports/UserDefaults.hpp"
#include "simulation/FaultSwitches.hpp"

#include <filesystem>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// The user defaults of one application, kept in a JSON file: one object; a text is a string, data is a string in
/// base64, texts are an array of strings. Entries of other types stay as they are. The file is read once, by the
/// constructor, and replaced atomically and durably at each change. A damaged file reads as empty; before the first
/// change it is renamed to `NAME.damaged`. Any thread.
class DefaultsFile final : public ports::UserDefaults {
public:
    /// Opens `FOLDER/APPLICATION.json`, which need not exist. The application is a bundle identifier, of letters,
    /// digits, '.' and '-'. The faults, if any, are those of the port.
    DefaultsFile(ports::FileSystem& files, ports::Journal& journal, std::filesystem::path folder,
                 std::string_view application, FaultSwitches* faults = nullptr);

    [[nodiscard]] std::optional<Bytes> data(const std::string& key) override;
    void setData(const std::string& key, BytesView value) override;
    [[nodiscard]] std::optional<std::string> text(const std::string& key) override;
    void setText(const std::string& key, const std::string& value) override;
    [[nodiscard]] std::optional<std::vector<std::string>> texts(const std::string& key) override;
    void setTexts(const std::string& key, const std::vector<std::string>& value) override;
    [[nodiscard]] std::optional<std::int64_t> integer(const std::string& key) override;
    void setInteger(const std::string& key, std::int64_t value) override;
    void remove(const std::string& key) override;

    [[nodiscard]] const std::filesystem::path& file() const { return file_; }

private:
    void begin(std::string_view operation);
    bool load();
    [[nodiscard]] std::optional<Json> value(const std::string& key);
    void set(const std::string& key, const Json& value);
    void replace(const std::string& key, const Json* value);
    [[nodiscard]] int write();
    [[nodiscard]] int putDamagedAside();

    FaultSwitches* const faults_;
    ports::FileSystem& files_;
    ports::Journal& journal_;
    std::filesystem::path folder_;
    std::filesystem::path file_;
    std::mutex mutex_;
    Json contents_ = Json::object();
    bool isDamaged_ = false;   // the file holds something that must not be overwritten
    bool isUnwritten_ = false; // the last change isn't on disk yet
};

} // namespace sentrel::simulation
