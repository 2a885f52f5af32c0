#include "simulation/stage/YamlValue.hpp"

#include "simulation/stage/NearestWord.hpp"
#include "simulation/stage/ScenarioError.hpp"

#include <sstream>
#include <utility>
#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/mark.h>
#include <yaml-cpp/parser.h>

namespace sentrel::simulation {

namespace {

int lineOf(const YAML::Mark& mark)
{
    return mark.is_null() || mark.line < 0 ? 1 : mark.line + 1;
}

/// Builds the values from the parser's events, avoiding the library's lax node type.
class Builder final : public YAML::EventHandler {
public:
    void OnDocumentStart(const YAML::Mark&) override {}
    void OnDocumentEnd() override {}

    void OnNull(const YAML::Mark& mark, YAML::anchor_t) override { add(made(YamlValue::Kind::null, mark)); }

    void OnAlias(const YAML::Mark& mark, YAML::anchor_t) override
    {
        throw SourceFault(lineOf(mark), "aliases (*name) can't be used in a scenario: write the value out");
    }

    void OnScalar(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t, const std::string& text) override
    {
        // The library marks plain scalars with the tag "?" and quoted ones with "!".
        refuseTag(mark, tag);
        YamlValue value = made(tag == "!" ? YamlValue::Kind::quoted : YamlValue::Kind::plain, mark);
        value.text = text;
        add(std::move(value));
    }

    void OnSequenceStart(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t,
                         YAML::EmitterStyle::value) override
    {
        open(YamlValue::Kind::list, mark, tag);
    }

    void OnSequenceEnd() override { close(); }

    void OnMapStart(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t, YAML::EmitterStyle::value) override
    {
        open(YamlValue::Kind::map, mark, tag);
    }

    void OnMapEnd() override { close(); }

    [[nodiscard]] YamlValue takeRoot() { return std::move(root_); }

private:
    static YamlValue made(YamlValue::Kind kind, const YAML::Mark& mark)
    {
        YamlValue value;
        value.kind = kind;
        value.line = lineOf(mark);
        return value;
    }

    static void refuseTag(const YAML::Mark& mark, const std::string& tag)
    {
        if (!tag.empty() && tag != "?" && tag != "!") {
            throw SourceFault(lineOf(mark), "tags can't be used in a scenario: leave " + inQuotes(tag) + " out");
        }
    }

    void open(YamlValue::Kind kind, const YAML::Mark& mark, const std::string& tag)
    {
        refuseTag(mark, tag);
        if (open_.size() >= mostYamlLevels) {
            throw SourceFault(lineOf(mark),
                              "the values are nested more than " + std::to_string(mostYamlLevels) + " levels deep");
        }
        open_.push_back(made(kind, mark));
    }

    void close()
    {
        YamlValue value = std::move(open_.back());
        open_.pop_back();
        add(std::move(value));
    }

    void add(YamlValue value)
    {
        if (open_.empty()) {
            root_ = std::move(value);
            return;
        }
        YamlValue& parent = open_.back();
        if (parent.isMap() && parent.keys.size() == parent.items.size()) {
            if (!value.isScalar()) {
                throw SourceFault(value.line, "a key must be a word or a number");
            }
            parent.keys.push_back(std::move(value));
            return;
        }
        if (value.isNull() && parent.isMap()) {
            value.line = parent.keys.back().line; // the library reports where it noticed the missing value
        }
        parent.items.push_back(std::move(value));
    }

    std::vector<YamlValue> open_;
    YamlValue root_;
};

/// Length of the UTF-8 character at the beginning of the text; 0 if it is invalid.
std::size_t characterLength(std::string_view text)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80U) {
        return 1;
    }
    const std::size_t length = lead >= 0xF0U ? 4 : lead >= 0xE0U ? 3 : 2;
    if (lead < 0xC2U || lead > 0xF4U || text.size() < length) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80U) {
            return 0;
        }
    }
    const bool isOverlong = (lead == 0xE0U && byte(1) < 0xA0U) || (lead == 0xF0U && byte(1) < 0x90U);
    const bool isNoCharacter = (lead == 0xEDU && byte(1) >= 0xA0U) || (lead == 0xF4U && byte(1) >= 0x90U);
    return isOverlong || isNoCharacter ? 0 : length;
}

/// In bytes. The library's scanner buffers as it looks ahead along a line; this bounds its memory.
constexpr std::size_t longestLine = 65536;

void checkCharacters(std::string_view text)
{
    int line = 1;
    std::size_t lineStart = 0;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = characterLength(text.substr(i));
        if (length == 0) {
            throw SourceFault(line, "the text is not UTF-8: save the file as UTF-8 text");
        }
        const auto first = static_cast<unsigned char>(text[i]);
        if (first == '\n') {
            ++line;
            lineStart = i;
        }
        if (i - lineStart > longestLine) {
            throw SourceFault(line, "a line is longer than " + std::to_string(longestLine) + " bytes");
        }
        if ((first < 0x20U && first != '\n' && first != '\r' && first != '\t') || first == 0x7FU) {
            throw SourceFault(line, "control characters are not allowed in YAML");
        }
        i += length;
    }
}

} // namespace

YamlValue parseYaml(const std::string& text)
{
    checkCharacters(text);
    std::istringstream stream{text};
    Builder builder;
    try {
        YAML::Parser parser{stream};
        if (!parser.HandleNextDocument(builder)) {
            throw SourceFault(1, "the file is empty: a scenario needs at least 'steps'");
        }
        YamlValue root = builder.takeRoot();
        Builder further;
        if (parser.HandleNextDocument(further)) {
            throw SourceFault(further.takeRoot().line, "the file has a second document: it may hold one scenario");
        }
        return root;
    } catch (const YAML::Exception& error) {
        throw SourceFault(lineOf(error.mark), "the text is not YAML: " + error.msg);
    }
}

} // namespace sentrel::simulation
