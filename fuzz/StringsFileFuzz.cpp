#include "Require.hpp"
#include "simulation/mac/language/StringsFile.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

// Any localisation table: what is read from it can be written as a table that reads the same, and each damage has its
// line.

namespace sentrel::fuzz {
namespace {

using simulation::parseStringsFile;

std::string quoted(const std::string& text)
{
    std::string result = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            result += '\\';
        }
        result += character;
    }
    return result + "\"";
}

void check(BytesView content)
{
    const auto table = parseStringsFile(content);
    std::size_t line = 1;
    for (const auto& damage : table.damages) {
        require(damage.line >= line && damage.line <= content.size() + 1, "a damage has the wrong line");
        require(!damage.problem.empty(), "a damage has no reason");
        line = damage.line;
    }
    std::string written;
    for (const auto& [key, text] : table.texts) {
        written += quoted(key) + " = " + quoted(text) + ";\n";
    }
    const auto again = parseStringsFile(bytesOf(written));
    require(again.damages.empty() && again.texts == table.texts, "a table changes when it is written");
}

} // namespace
} // namespace sentrel::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    sentrel::fuzz::check({data, size});
    return 0;
}
