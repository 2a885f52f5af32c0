#pragma once

#include "platform/Journal.hpp"
#include "platform/Language.hpp"
#include "platform/simulated/StringsFile.hpp"

#include <filesystem>
#include <mutex>
#include <string>

namespace sentrel::simulated {

/// One user's language: the localisation table of a locale, read when the first text is asked for, and case by the
/// locale's rules. Any thread.
class IcuLanguage final : public platform::Language {
public:
    /// Texts come from `RESOURCES/LOCALE.lproj/Localizable.strings`, or from the language's own folder (`de` for
    /// `de_AT`); without either every text is its key. A damaged table is noted as `localization.damaged` {file, line,
    /// problem} and used as far as it is good.
    IcuLanguage(std::filesystem::path resources, platform::Journal& journal, std::string locale = "en");

    [[nodiscard]] std::string localized(std::string_view key) override;

    /// No text contains the empty text, as on a Mac.
    [[nodiscard]] bool containsIgnoringCase(std::string_view text, std::string_view part) override;

private:
    [[nodiscard]] const StringsTable& table();
    StringsTable readTable();
    void noteDamages() const;

    const std::filesystem::path resources_;
    platform::Journal& journal_;
    const std::string locale_;
    std::once_flag isRead_;
    StringsTable table_;
    std::string file_; // of the table, below the resources
};

} // namespace sentrel::simulated
