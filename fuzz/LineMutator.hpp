#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

// A mutation that keeps a text made of lines and values after colons, for readers that refuse most other texts early.

namespace sentrel::fuzz {

/// Changes one line: moves, doubles or drops it, indents it, or gives it the value or the key of another.
class LineMutation {
public:
    LineMutation(std::string_view text, unsigned seed) : random_(seed)
    {
        std::istringstream stream{std::string{text}};
        for (std::string line; std::getline(stream, line);) {
            lines_.push_back(line);
        }
    }

    [[nodiscard]] bool isPossible() const { return !lines_.empty(); }

    std::string result()
    {
        change();
        std::string text;
        for (const std::string& line : lines_) {
            text += line + '\n';
        }
        return text;
    }

private:
    void change()
    {
        const std::size_t place = below(lines_.size());
        std::string& line = lines_[place];
        const std::string other = lines_[below(lines_.size())];
        switch (below(7)) {
        case 0:
            lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(place));
            return;
        case 1:
            lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(place), other);
            return;
        case 2:
            line.insert(0, 2, ' ');
            return;
        case 3:
            line.erase(0, line.starts_with("  ") ? 2 : 0);
            return;
        case 4:
            line = upToValue(line) + other.substr(upToValue(other).size());
            return;
        case 5:
            line = upToValue(other) + line.substr(upToValue(line).size());
            return;
        default:
            line = upToValue(line) + std::string{values[below(values.size())]};
        }
    }

    static std::string upToValue(const std::string& line)
    {
        const auto colon = line.find(": ");
        return line.substr(0, colon == std::string::npos ? line.size() : colon + 2);
    }

    [[nodiscard]] std::size_t below(std::size_t end) { return random_() % end; }

    /// The values at which readers tend to differ.
    static constexpr std::array<std::string_view, 20> values{
        "0",         "-1", "1e400", ".nan",         "9223372036854775808",
        "99999999h", "0s", "true",  "null",         "~",
        "\"\"",      "[]", "{}",    "[[]]",         "&a 1",
        "*a",        "|",  "!!x",   "{a: 1, a: 2}", "'"};

    std::minstd_rand random_;
    std::vector<std::string> lines_;
};

/// Changes a line, or bytes.
inline std::size_t mutateLines(std::uint8_t* data, std::size_t size, std::size_t maxSize, unsigned seed)
{
    LineMutation mutation{{reinterpret_cast<const char*>(data), size}, seed};
    const std::string changed = mutation.isPossible() && seed % 4 != 0 ? mutation.result() : std::string{};
    if (changed.empty() || changed.size() > maxSize) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    std::memcpy(data, changed.data(), changed.size());
    return changed.size();
}

} // namespace sentrel::fuzz

/// The mutator of the target whose only source includes this file.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize, unsigned seed)
{
    return sentrel::fuzz::mutateLines(data, size, maxSize, seed);
}
