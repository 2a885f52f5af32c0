#pragma once

#include "ports/Journal.hpp"
#include "ports/Language.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/mac/language/StringsFile.hpp"

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace sentrel::simulation {

/// One user's language: the localisation table of a locale, read when the first text is asked for, and case and
/// characters by the locale's rules. Any thread.
class IcuLanguage final : public ports::Language {
public:
    /// Texts come from `RESOURCES/LOCALE.lproj/Localizable.strings`; else from the nearest table of the language and
    /// its script (`de` for `de_AT`, `zh-Hans` for `zh_CN`), else from the English one; without a table every text is
    /// its key. Damage is noted as `localization.damaged` {file, line, problem}; the table's good entries are used.
    IcuLanguage(std::filesystem::path resources, ports::Journal& journal, std::string locale = "en");

    /// The user chooses another language for all texts from now on.
    void setLocale(std::string locale);

    [[nodiscard]] std::string localized(std::string_view key) override;

    /// The empty part is contained in no text, as on a Mac.
    [[nodiscard]] bool containsIgnoringCase(std::string_view text, std::string_view part) override;

    /// Grapheme clusters. Invalid bytes count as characters.
    [[nodiscard]] std::size_t characterCount(std::string_view text) override;

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    struct Table {
        StringsTable strings;
        std::string file; ///< relative to the resources
    };

    [[nodiscard]] std::string locale() const;
    [[nodiscard]] std::shared_ptr<const Table> table();
    [[nodiscard]] Table readTable() const;
    void noteDamages(const Table& table) const;

    const std::filesystem::path resources_;
    ports::Journal& journal_;
    mutable std::mutex mutex_;
    std::string locale_;
    std::shared_ptr<const Table> table_; ///< null until a text is asked for
};

} // namespace sentrel::simulation
