#include "simulation/mac/language/StringsFile.hpp"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <unicode/unistr.h>
#include <utility>

namespace sentrel::simulation {

namespace {

using Text = icu::UnicodeString;

// Decodes to UTF-16 code units in the machine's byte order. Invalid bytes become U+FFFD.
Text decoded(BytesView content)
{
    const auto startsWith = [&](std::uint8_t first, std::uint8_t second) {
        return content.size() >= 2 && content[0] == first && content[1] == second;
    };
    const bool isBigEndian = startsWith(0xFE, 0xFF);
    if (!isBigEndian && !startsWith(0xFF, 0xFE)) {
        const auto text = textOf(content);
        const std::string_view mark = "\xEF\xBB\xBF";
        const auto unmarked = text.starts_with(mark) ? text.substr(mark.size()) : text;
        return Text::fromUTF8(icu::StringPiece{unmarked.data(), static_cast<std::int32_t>(unmarked.size())});
    }
    Text text;
    for (std::size_t place = 2; place + 1 < content.size(); place += 2) {
        const unsigned first = content[place];
        const unsigned second = content[place + 1];
        text.append(static_cast<char16_t>(isBigEndian ? first << 8 | second : second << 8 | first));
    }
    if (content.size() % 2 != 0) {
        text.append(u'\uFFFD');
    }
    return text;
}

std::string utf8(const Text& text)
{
    std::string result;
    text.toUTF8String(result);
    return result;
}

bool isSpace(char16_t unit)
{
    return unit == u' ' || (unit >= u'\t' && unit <= u'\r');
}

bool isBareWord(char16_t unit)
{
    const bool isLetter = (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z';
    return isLetter || (unit >= u'0' && unit <= u'9') || unit == u'_' || unit == u'.' || unit == u'-' || unit == u'$';
}

class StringsParser {
public:
    explicit StringsParser(Text text) : text_(std::move(text)) {}

    StringsTable parse()
    {
        while (skipToEntry()) {
            const std::int32_t begin = place_;
            if (!parseEntry()) {
                table_.damages.push_back({lineOf(begin), problem_});
                place_ = begin;
                skipLine();
            }
        }
        return std::move(table_);
    }

private:
    [[nodiscard]] bool atEnd() const { return place_ >= text_.length(); }
    [[nodiscard]] char16_t peek(std::int32_t ahead = 0) const { return text_.charAt(place_ + ahead); }

    // Places must not decrease from call to call.
    std::size_t lineOf(std::int32_t place)
    {
        for (; counted_ < place; ++counted_) {
            const bool isPair = text_.charAt(counted_) == u'\r' && text_.charAt(counted_ + 1) == u'\n';
            line_ += isBreak(text_.charAt(counted_)) && !isPair ? 1U : 0U;
        }
        return line_;
    }

    static bool isBreak(char16_t unit) { return unit == u'\n' || unit == u'\r'; }

    void skipLine()
    {
        while (!atEnd() && !isBreak(peek())) {
            ++place_;
        }
    }

    // False at the end of the text; an unfinished comment extends to there.
    bool skipToEntry()
    {
        const std::int32_t begin = place_;
        if (!skipBlank()) {
            table_.damages.push_back({lineOf(begin), problem_});
        }
        return !atEnd();
    }

    // Skips white space and comments. False if a comment doesn't end.
    bool skipBlank()
    {
        while (!atEnd()) {
            if (isSpace(peek())) {
                ++place_;
            } else if (peek() == u'/' && peek(1) == u'/') {
                skipLine();
            } else if (peek() == u'/' && peek(1) == u'*') {
                if (!skipComment()) {
                    return false;
                }
            } else {
                break;
            }
        }
        return true;
    }

    bool skipComment()
    {
        // A failed search isn't repeated: else a file full of comment openings would take quadratic time.
        const std::int32_t end = place_ < unendedFrom_ ? text_.indexOf(u"*/", 2, place_ + 2) : -1;
        if (end < 0) {
            unendedFrom_ = std::min(unendedFrom_, place_);
            place_ = text_.length();
            return fail("a comment doesn't end");
        }
        place_ = end + 2;
        return true;
    }

    bool parseEntry()
    {
        const auto key = parseText();
        if (!key || !skipBlank()) {
            return false;
        }
        auto value = key;
        if (!atEnd() && peek() == u'=') {
            ++place_;
            if (!skipBlank()) {
                return false;
            }
            value = parseText();
        }
        if (!value || !skipBlank()) {
            return false;
        }
        if (atEnd() || peek() != u';') {
            return fail("a semicolon is missing");
        }
        ++place_;
        table_.texts.insert_or_assign(utf8(*key), utf8(*value));
        return true;
    }

    std::optional<Text> parseText()
    {
        Text text;
        if (!atEnd() && peek() == u'"') {
            return parseQuoted();
        }
        while (!atEnd() && isBareWord(peek())) {
            text.append(peek());
            ++place_;
        }
        if (text.isEmpty()) {
            fail("a text in quotation marks is missing");
            return std::nullopt;
        }
        return text;
    }

    std::optional<Text> parseQuoted()
    {
        Text text;
        for (++place_; !atEnd(); ++place_) {
            if (peek() == u'"') {
                ++place_;
                return text;
            }
            if (peek() != u'\\') {
                text.append(peek());
                continue;
            }
            ++place_;
            const auto unit = parseEscape();
            if (!unit) {
                fail("an escape isn't known");
                return std::nullopt;
            }
            text.append(*unit);
        }
        fail("a quotation mark is missing");
        return std::nullopt;
    }

    // Starts at the character after the backslash, and ends at the escape's last.
    std::optional<char16_t> parseEscape()
    {
        if (atEnd()) {
            return std::nullopt;
        }
        switch (peek()) {
        case u'n':
            return u'\n';
        case u't':
            return u'\t';
        case u'r':
            return u'\r';
        case u'"':
        case u'\\':
        case u'\'':
            return peek();
        case u'u':
        case u'U':
            return parseCodeUnit();
        default:
            return std::nullopt;
        }
    }

    std::optional<char16_t> parseCodeUnit()
    {
        const std::string digits = utf8(text_.tempSubString(place_ + 1, 4));
        std::uint16_t unit = 0;
        const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), unit, 16);
        if (digits.size() != 4 || read.ptr != digits.data() + 4) {
            return std::nullopt;
        }
        place_ += 4;
        return static_cast<char16_t>(unit);
    }

    bool fail(std::string_view problem)
    {
        problem_ = problem;
        return false;
    }

    Text text_;
    std::int32_t place_ = 0;
    std::int32_t counted_ = 0;
    std::int32_t unendedFrom_ = std::numeric_limits<std::int32_t>::max();
    std::size_t line_ = 1;
    std::string_view problem_;
    StringsTable table_;
};

} // namespace

StringsTable parseStringsFile(BytesView content)
{
    return StringsParser{decoded(content)}.parse();
}

} // namespace sentrel::simulation
