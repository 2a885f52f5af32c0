#include "simulation/mac/language/IcuLanguage.hpp"

#include "foundation/SecretBytes.hpp"
#include "posix/PosixFileSystem.hpp"
#include "simulation/Events.hpp"

#include <algorithm>
#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>
#include <unicode/utext.h>
#include <utility>

namespace sentrel::simulation {

namespace {

std::string languageOf(const std::string& locale)
{
    return locale.substr(0, locale.find_first_of("-_"));
}

// Guards paths: a locale must be a plain folder name.
bool isLocaleName(const std::string& locale)
{
    return !locale.empty() && std::ranges::all_of(locale, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
    });
}

/// The possible names of a locale's table, best first.
std::vector<std::string> tableNames(const std::string& locale)
{
    std::vector<std::string> names;
    if (isLocaleName(locale)) {
        names.push_back(locale);
        UErrorCode error = U_ZERO_ERROR;
        icu::Locale likely{locale.c_str()};
        likely.addLikelySubtags(error);
        if (U_SUCCESS(error) && *likely.getScript() != '\0') {
            names.push_back(std::string{likely.getLanguage()} + "-" + likely.getScript());
        }
        names.push_back(languageOf(locale));
    }
    names.emplace_back("en");
    return names;
}

// Removes differences of case and composition. In Turkic languages i and dotless i are different letters.
icu::UnicodeString folded(std::string_view text, const std::string& language)
{
    const bool isTurkic = language == "tr" || language == "az";
    auto units = icu::UnicodeString::fromUTF8(icu::StringPiece{text.data(), static_cast<std::int32_t>(text.size())});
    units.foldCase(isTurkic ? U_FOLD_CASE_EXCLUDE_SPECIAL_I : U_FOLD_CASE_DEFAULT);
    UErrorCode error = U_ZERO_ERROR;
    const auto* const composer = icu::Normalizer2::getNFCInstance(error);
    if (U_FAILURE(error)) {
        return units;
    }
    auto composed = composer->normalize(units, error);
    return U_FAILURE(error) ? units : composed;
}

/// UTF-16 units in memory that is wiped: the text may be a passcode.
class WipedUnits {
public:
    explicit WipedUnits(std::string_view text) : memory_(text.size() * sizeof(char16_t))
    {
        constexpr char16_t replacement = 0xFFFD;
        UErrorCode error = U_ZERO_ERROR;
        u_strFromUTF8WithSub(units(), static_cast<std::int32_t>(text.size()), &length_, text.data(),
                             static_cast<std::int32_t>(text.size()), replacement, nullptr, &error);
        length_ = U_FAILURE(error) ? 0 : length_;
    }

    [[nodiscard]] char16_t* units() { return reinterpret_cast<char16_t*>(memory_.writable().data()); }
    [[nodiscard]] std::int32_t length() const { return length_; }

private:
    SecretBytes memory_; // UTF-16 never has more units than UTF-8 has bytes
    std::int32_t length_ = 0;
};

} // namespace

IcuLanguage::IcuLanguage(std::filesystem::path resources, ports::Journal& journal, std::string locale)
    : resources_(std::move(resources)), journal_(journal), locale_(std::move(locale))
{
}

void IcuLanguage::setLocale(std::string locale)
{
    const std::lock_guard guard{mutex_};
    locale_ = std::move(locale);
    table_.reset();
}

std::string IcuLanguage::localized(std::string_view key)
{
    faults_.call("localized");
    const auto current = table();
    const auto found = current->strings.texts.find(key);
    return found == current->strings.texts.end() ? std::string{key} : found->second;
}

bool IcuLanguage::containsIgnoringCase(std::string_view text, std::string_view part)
{
    faults_.call("containsIgnoringCase");
    const std::string language = languageOf(locale());
    return !part.empty() && folded(text, language).indexOf(folded(part, language)) >= 0;
}

std::size_t IcuLanguage::characterCount(std::string_view text)
{
    faults_.call("characterCount");
    WipedUnits units{text};
    UErrorCode error = U_ZERO_ERROR;
    UText* const opened = utext_openUChars(nullptr, units.units(), units.length(), &error);
    const std::unique_ptr<icu::BreakIterator> characters{
        icu::BreakIterator::createCharacterInstance(icu::Locale{locale().c_str()}, error)};
    std::size_t count = 0;
    if (U_SUCCESS(error)) {
        // Refers to the units without a copy.
        characters->setText(opened, error);
        while (characters->next() != icu::BreakIterator::DONE) {
            ++count;
        }
    }
    utext_close(opened);
    return count;
}

std::string IcuLanguage::locale() const
{
    const std::lock_guard guard{mutex_};
    return locale_;
}

std::shared_ptr<const IcuLanguage::Table> IcuLanguage::table()
{
    std::shared_ptr<const Table> read;
    {
        const std::lock_guard guard{mutex_};
        if (table_ != nullptr) {
            return table_;
        }
        read = table_ = std::make_shared<const Table>(readTable());
    }
    // Outside the lock: an observer of the journal may ask for a text.
    noteDamages(*read);
    return read;
}

IcuLanguage::Table IcuLanguage::readTable() const
{
    for (const std::string& name : tableNames(locale_)) {
        const std::string file = name + ".lproj/Localizable.strings";
        if (const auto content = posix::PosixFileSystem{}.read(resources_ / file)) {
            return {parseStringsFile(*content), file};
        }
    }
    return {};
}

void IcuLanguage::noteDamages(const Table& table) const
{
    for (const auto& [line, problem] : table.strings.damages) {
        journal_.note(events::LocalizationDamaged{table.file, static_cast<std::int64_t>(line), problem});
    }
}

} // namespace sentrel::simulation
