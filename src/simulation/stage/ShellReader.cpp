#include "simulation/stage/ShellReader.hpp"

#include <filesystem>

namespace sentrel::simulation {

namespace {

constexpr std::uint32_t mostRows = 100'000;

bool isPlainWord(const YamlValue& value, std::string_view word)
{
    return value.kind == YamlValue::Kind::plain && value.text == word;
}

/// Text; an empty one must be in quotes.
std::string readAnyText(const YamlValue& value, std::string_view what)
{
    const bool isEmpty = value.kind == YamlValue::Kind::quoted && value.text.empty();
    return isEmpty ? std::string{} : readText(value, what);
}

ports::Size readPair(const YamlValue& value, std::string_view what, std::string_view example)
{
    if (!value.isList() || value.items.size() != 2) {
        throw SourceFault(value.line, std::string{what} + " has two numbers, as in " + std::string{example});
    }
    const double first = readNumber(value.items[0], what);
    const double second = readNumber(value.items[1], what);
    return {first, second};
}

/// The only entry of a map.
const YamlValue& onlyItem(const YamlValue& value, std::string_view what, std::string_view example)
{
    if (!value.isMap() || value.keys.size() != 1) {
        throw SourceFault(value.line, std::string{what} + " takes one key, as in " + std::string{example});
    }
    return value.items.front();
}

} // namespace

UseMenu readUseMenu(const YamlValue& value)
{
    if (isPlainWord(value, "open") || isPlainWord(value, "close")) {
        return {{}, value.text == "open"};
    }
    return {readText(value, "what to press in the menu")};
}

TypeText readTypeText(const YamlValue& value)
{
    if (!value.isMap()) {
        return {std::nullopt, readAnyText(value, "what to type")};
    }
    const YamlValue& text = onlyItem(value, "'type'", "{type: {Passcode: \"2468\"}}");
    return {value.keys.front().text, readAnyText(text, "what to type")};
}

PressKey readPressKey(const YamlValue& value)
{
    static constexpr std::array<Word<ui::Key>, 3> keys{
        {{"return", ui::Key::returnKey}, {"delete", ui::Key::deleteKey}, {"escape", ui::Key::escape}}};
    return {readWord(value, "key", keys)};
}

MoveSlider readMoveSlider(const YamlValue& value)
{
    const YamlValue& target = onlyItem(value, "'slide'", "{slide: {Alarm volume: 0.5}}");
    return {value.keys.front().text, readNumber(target, "where the slider goes")};
}

SelectRows readSelectRows(const YamlValue& value)
{
    requireList(value, "'select'");
    SelectRows action;
    for (const YamlValue& item : value.items) {
        action.rows.push_back(readWhole(item, "the place of a row", 0, mostRows));
    }
    return action;
}

ShellWindow readShellWindow(const YamlValue& value)
{
    static constexpr std::array<Word<ShellWindow>, 2> words{
        {{"main", ShellWindow::main}, {"alerts", ShellWindow::alerts}}};
    return readWord(value, "window", words);
}

DragWindow readDragWindow(const YamlValue& value, const ReadContext& context)
{
    static constexpr std::array<FieldRow<DragWindow>, 3> fields{{
        {"window", [](auto& action, auto& item, auto&) { action.window = readShellWindow(item); }, true},
        {"size", [](auto& action, auto& item, auto&) { action.size = readPair(item, "'size'", "[440, 600]"); }},
        {"to", [](auto& action, auto& item, auto&) { action.to = readPair(item, "'to'", "[100, 80]"); }},
    }};
    DragWindow action;
    readFields(value, "'drag'", fields, action, context);
    if (!action.size && !action.to) {
        throw SourceFault(value.line, "'drag' needs 'size', 'to' or both");
    }
    return action;
}

AnswerLoginItem readLoginItem(const YamlValue& value)
{
    static constexpr std::array<Word<bool>, 2> words{{{"ok", false}, {"fail", true}}};
    return {readWord(value, "answer", words)};
}

AnswerSavePanel readSavePanel(const YamlValue& value)
{
    if (isPlainWord(value, "cancel")) {
        return {};
    }
    const std::string folder = readText(value, "a folder on the disk");
    const std::filesystem::path path{folder};
    for (const auto& step : path) {
        if (path.is_absolute() || step == "..") {
            throw SourceFault(value.line,
                              "a save panel's folder lies on the Mac's disk, as in {save-panel: Downloads}");
        }
    }
    return {folder};
}

} // namespace sentrel::simulation
