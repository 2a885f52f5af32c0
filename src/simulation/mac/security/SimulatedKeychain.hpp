#pragma once

#include "ports/Keychain.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/mac/security/KeychainContents.hpp"

#include <array>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string_view>

namespace sentrel::ports {
class FileSystem;
}

namespace sentrel::simulation {

/// The user's two keychains, kept in one file of the Mac's disk, which is replaced durably at each change. A damaged
/// file is reported by every call, and left alone. Any thread.
class SimulatedKeychain final : public ports::Keychain {
public:
    /// A keychain's answer to requests.
    enum class Access {
        open,
        locked, ///< the user's session is locked: `errSecInteractionNotAllowed`
        denied, ///< the user or the system refuses this application: `errSecAuthFailed`
    };

    /// Reads the file, if it exists.
    SimulatedKeychain(ports::FileSystem& files, std::filesystem::path file);

    [[nodiscard]] Copied copyMatching(const ports::KeychainDictionary& query) override;
    [[nodiscard]] std::int32_t add(const ports::KeychainDictionary& attributes) override;
    [[nodiscard]] std::int32_t update(const ports::KeychainDictionary& query,
                                      const ports::KeychainDictionary& attributesToUpdate) override;
    std::int32_t remove(const ports::KeychainDictionary& query) override;

    void setAccess(KeychainStore store, Access access);

    /// Stores an item as if by another program; replaces one with the same service and account. False if the file can't
    /// be written or is damaged.
    [[nodiscard]] bool setItem(KeychainStore store, KeychainItem item);

    /// A copy of the item; none when there isn't one.
    [[nodiscard]] std::optional<KeychainItem> item(KeychainStore store, std::string_view service,
                                                   std::string_view account) const;

    /// `copy`, `add`, `update` and `delete`, each failing with `errSecNotAvailable`.
    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    struct Query;
    using Change = std::function<std::int32_t(std::vector<KeychainItem>&)>;

    [[nodiscard]] std::int32_t permit(const std::optional<Query>& query, std::string_view fault);
    [[nodiscard]] std::int32_t change(KeychainStore store, const Change& make);

    ports::FileSystem& files_;
    const std::filesystem::path file_;
    FaultSwitches faults_{"copy", "add", "update", "delete"};
    mutable std::mutex mutex_;
    std::optional<KeychainContents> contents_; // none when the file is damaged
    std::array<Access, 2> access_{Access::open, Access::open};
};

} // namespace sentrel::simulation
