#include "simulation/mac/motion/MotionRecording.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::string_view header = "t_seconds,x_g,y_g,z_g";
constexpr std::array<std::string_view, 4> columns{"t_seconds", "x_g", "y_g", "z_g"};
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// Reads a recording's lines one by one, and knows the current line for error messages.
class LineReader {
public:
    LineReader(std::string_view text, std::string_view name) : rest_(text), name_(name) {}

    /// The next line without its end; none after the last.
    std::optional<std::string_view> next()
    {
        if (rest_.empty()) {
            return std::nullopt;
        }
        ++line_;
        const std::size_t end = rest_.find('\n');
        std::string_view line = rest_.substr(0, end);
        rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        refuseBytes(line);
        return line;
    }

    [[noreturn]] void fail(const std::string& what) const
    {
        throw MotionRecordingError{std::string{name_} + ':' + std::to_string(line_) + ": " + what};
    }

private:
    /// A number needs printable ASCII only; anything else would garble the message, too.
    void refuseBytes(std::string_view line) const
    {
        for (const char character : line) {
            const auto byte = static_cast<unsigned char>(character);
            if ((byte < 0x20 && byte != '\t') || byte > 0x7E) {
                std::array<char, 2> digits{};
                std::to_chars(digits.data(), digits.data() + digits.size(), byte, 16);
                fail("the byte 0x" + std::string{digits[0]} + (digits[1] != '\0' ? std::string{digits[1]} : "") +
                     " is not plain text");
            }
        }
    }

    std::string_view rest_;
    std::string_view name_;
    std::size_t line_ = 0;
};

std::string_view trimmedCell(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

std::string inQuotes(std::string_view text)
{
    constexpr std::size_t longest = 40;
    return '"' + std::string{text.substr(0, longest)} + (text.size() > longest ? "..." : "") + '"';
}

double readNumber(const LineReader& reader, std::string_view column, std::string_view field)
{
    double value = 0.0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    if (error == std::errc::result_out_of_range) {
        reader.fail(std::string{column} + ": " + inQuotes(field) + " is out of range");
    }
    if (error != std::errc{} || end != field.data() + field.size()) {
        reader.fail(std::string{column} + ": " + inQuotes(field) + " is not a number");
    }
    if (!std::isfinite(value)) {
        reader.fail(std::string{column} + ": " + inQuotes(field) + " is not a finite number");
    }
    return value;
}

std::array<double, columns.size()> readRow(const LineReader& reader, std::string_view line)
{
    std::array<double, columns.size()> row{};
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const bool isLast = i + 1 == columns.size();
        const std::size_t comma = line.find(',');
        if (!isLast && comma == std::string_view::npos) {
            reader.fail("the row has " + std::to_string(i + 1) + " of 4 columns");
        }
        if (isLast && comma != std::string_view::npos) {
            reader.fail("the row has more than 4 columns");
        }
        row[i] = readNumber(reader, columns[i], trimmedCell(line.substr(0, comma)));
        line.remove_prefix(isLast ? line.size() : comma + 1);
    }
    return row;
}

} // namespace

MotionRecording MotionRecording::parse(std::string_view text, std::string_view name)
{
    if (text.size() > maximumSize) {
        throw MotionRecordingError{std::string{name} + ": larger than " + std::to_string(maximumSize >> 20) + " MB"};
    }
    if (text.starts_with(byteOrderMark)) {
        text.remove_prefix(byteOrderMark.size());
    }
    LineReader reader{text, name};
    const auto first = reader.next();
    if (!first) {
        throw MotionRecordingError{std::string{name} + ": the file is empty"};
    }
    if (trimmedCell(*first) != header) {
        reader.fail("the header is " + inQuotes(*first) + " instead of " + inQuotes(header));
    }
    std::vector<Sample> samples;
    double last = 0.0;
    while (const auto line = reader.next()) {
        const auto [seconds, x, y, z] = readRow(reader, *line);
        if (seconds < 0.0) {
            reader.fail("the time is negative");
        }
        if (seconds < last) {
            reader.fail("the time is before that of the previous row");
        }
        last = seconds;
        samples.push_back({durationFromSeconds(seconds), {x, y, z}});
    }
    if (samples.empty()) {
        reader.fail("no samples after the header");
    }
    return MotionRecording{std::move(samples)};
}

} // namespace sentrel::simulation
