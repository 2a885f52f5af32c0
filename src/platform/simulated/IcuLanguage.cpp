#include "platform/simulated/IcuLanguage.hpp"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <utility>

namespace sentrel::simulated {

namespace {

// Far beyond any real table.
constexpr std::uintmax_t largestTable = std::uintmax_t{16} << 20;

std::string languageOf(const std::string& locale)
{
    return locale.substr(0, locale.find_first_of("-_"));
}

// A locale names a folder, not a path.
bool isLocaleName(const std::string& locale)
{
    return !locale.empty() && std::all_of(locale.begin(), locale.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
    });
}

std::optional<Bytes> readFile(const std::filesystem::path& file)
{
    std::error_code error;
    const auto size = std::filesystem::file_size(file, error);
    if (error || size > largestTable) {
        return std::nullopt;
    }
    std::ifstream stream{file, std::ios::binary};
    return Bytes{std::istreambuf_iterator<char>{stream}, std::istreambuf_iterator<char>{}};
}

// Case and the ways to compose a character taken away. In Turkic languages i and dotless i are different letters.
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

} // namespace

IcuLanguage::IcuLanguage(std::filesystem::path resources, platform::Journal& journal, std::string locale)
    : resources_(std::move(resources)), journal_(journal), locale_(std::move(locale))
{
}

std::string IcuLanguage::localized(std::string_view key)
{
    const auto& texts = table().texts;
    const auto found = texts.find(key);
    return found == texts.end() ? std::string{key} : found->second;
}

bool IcuLanguage::containsIgnoringCase(std::string_view text, std::string_view part)
{
    const std::string language = languageOf(locale_);
    return !part.empty() && folded(text, language).indexOf(folded(part, language)) >= 0;
}

const StringsTable& IcuLanguage::table()
{
    bool isFirst = false;
    std::call_once(isRead_, [&] {
        table_ = readTable();
        isFirst = true;
    });
    if (isFirst) {
        noteDamages();
    }
    return table_;
}

StringsTable IcuLanguage::readTable()
{
    if (!isLocaleName(locale_)) {
        return {};
    }
    for (const std::string& name : {locale_, languageOf(locale_)}) {
        file_ = name + ".lproj/Localizable.strings";
        if (const auto content = readFile(resources_ / file_)) {
            return parseStringsFile(*content);
        }
    }
    return {};
}

// Only when the table stands: an observer of the journal may ask for a text.
void IcuLanguage::noteDamages() const
{
    for (const auto& [line, problem] : table_.damages) {
        journal_.note("localization.damaged",
                      {{"file", file_}, {"line", static_cast<std::int64_t>(line)}, {"problem", problem}});
    }
}

} // namespace sentrel::simulated
