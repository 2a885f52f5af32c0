#include "simulation/mac/language/StringsFile.hpp"

#include <algorithm>
#include <optional>
#include <utility>

namespace sentrel::simulation {

namespace {

class StringsParser {
public:
    explicit StringsParser(std::string_view text) : text_(text) {}

    StringsTable parse()
    {
        while (skipToEntry()) {
            const std::size_t begin = place_;
            if (!parseEntry()) {
                noteDamage(begin);
                skipLine(begin);
            }
        }
        return std::move(table_);
    }

private:
    /// Passes the expected text. False if another stands here.
    bool take(std::string_view expected)
    {
        const bool isThere = text_.substr(place_).starts_with(expected);
        place_ += isThere ? expected.size() : 0;
        return isThere;
    }

    void skipSpace() { place_ = std::min(text_.find_first_not_of(" \t\r\n", place_), text_.size()); }
    void skipLine(std::size_t from) { place_ = std::min(text_.find('\n', from), text_.size()); }

    /// Skips white space and comments. False at the end of the text.
    bool skipToEntry()
    {
        for (;;) {
            skipSpace();
            if (take("//")) {
                skipLine(place_);
            } else if (text_.substr(place_).starts_with("/*")) {
                skipComment();
            } else {
                return place_ < text_.size();
            }
        }
    }

    /// An unfinished comment extends to the end of the text.
    void skipComment()
    {
        const std::size_t end = text_.find("*/", place_ + 2);
        if (end == std::string_view::npos) {
            fail("a comment doesn't end");
            noteDamage(place_);
        }
        place_ = end == std::string_view::npos ? text_.size() : end + 2;
    }

    bool parseEntry()
    {
        const auto key = parseText();
        if (!key) {
            return false;
        }
        skipSpace();
        if (!take("=")) {
            return fail("an equals sign is missing");
        }
        skipSpace();
        const auto value = parseText();
        if (!value) {
            return false;
        }
        skipSpace();
        if (!take(";")) {
            return fail("a semicolon is missing");
        }
        table_.texts.insert_or_assign(*key, *value);
        return true;
    }

    std::optional<std::string> parseText()
    {
        constexpr std::string_view escapes = "ntr\"\\'";
        constexpr std::string_view meanings = "\n\t\r\"\\'";
        if (!take("\"")) {
            fail("a text in quotation marks is missing");
            return std::nullopt;
        }
        std::string text;
        while (place_ < text_.size() && text_[place_] != '"') {
            if (!take("\\")) {
                text += text_[place_++];
                continue;
            }
            const std::size_t escape = place_ < text_.size() ? escapes.find(text_[place_++]) : std::string_view::npos;
            if (escape == std::string_view::npos) {
                fail("an escape isn't known");
                return std::nullopt;
            }
            text += meanings[escape];
        }
        if (!take("\"")) {
            fail("a quotation mark is missing");
            return std::nullopt;
        }
        return text;
    }

    bool fail(std::string_view problem)
    {
        problem_ = problem;
        return false;
    }

    /// Places must not decrease from call to call.
    void noteDamage(std::size_t place)
    {
        line_ += static_cast<std::size_t>(std::ranges::count(text_.substr(counted_, place - counted_), '\n'));
        counted_ = place;
        table_.damages.push_back({line_, problem_});
    }

    std::string_view text_;
    std::size_t place_ = 0;
    std::size_t line_ = 1;
    std::size_t counted_ = 0; // up to here the lines are counted
    std::string_view problem_;
    StringsTable table_;
};

} // namespace

StringsTable parseStringsFile(BytesView content)
{
    return StringsParser{textOf(content)}.parse();
}

} // namespace sentrel::simulation
