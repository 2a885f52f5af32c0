#include "ui/Description.hpp"

#include "ui/Node.hpp"

#include <algorithm>
#include <array>
#include <charconv>

namespace sentrel::ui {

namespace {

std::string inQuotes(std::string_view text)
{
    std::string shown = "\"";
    for (const char character : text) {
        if (character == '\n') {
            shown += "\\n";
            continue;
        }
        if (character == '"' || character == '\\') {
            shown += '\\';
        }
        shown += character;
    }
    return shown + '"';
}

std::string number(double value)
{
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return {digits.data(), end};
}

/// One dot for each character, however many bytes it has.
std::string dots(const SecretText& text)
{
    std::string shown;
    for (const std::uint8_t byte : text.view()) {
        if ((byte & 0xC0U) != 0x80U) {
            shown += "\u2022";
        }
    }
    return shown;
}

std::string withLabel(std::string_view kind, std::string_view label)
{
    return label.empty() ? std::string{kind} : std::string{kind} + " " + inQuotes(label);
}

/// An enumerator's word from a list in the order of declaration.
template <class Enumeration, std::size_t count>
std::string_view word(const std::array<std::string_view, count>& words, Enumeration value)
{
    return words.at(static_cast<std::size_t>(value));
}

constexpr std::array<std::string_view, 2> axes{"row", "column"};
constexpr std::array<std::string_view, 6> textStyles{", large title", ", title",  ", headline", "",
                                                     ", callout",     ", caption"};
constexpr std::array<std::string_view, 3> textColors{"", ", secondary", ", alarm"};
constexpr std::array<std::string_view, 2> imageSources{"symbol", "data"};
constexpr std::array<std::string_view, 4> buttonRoles{"", ", prominent", ", destructive", ", cancel"};
constexpr std::array<std::string_view, 3> keys{"return", "delete", "escape"};
constexpr std::array<std::string_view, 3> selectionModes{"", ", single selection", ", multiple selection"};
constexpr std::array<std::string_view, 2> dialogKinds{"confirmation", "alert"};

struct Describe {
    std::string operator()(const Stack& stack) const { return std::string{word(axes, stack.axis)}; }
    std::string operator()(const Spacer& /*spacer*/) const { return "spacer"; }
    std::string operator()(const Divider& /*divider*/) const { return "divider"; }
    std::string operator()(const Text& shown) const
    {
        return "text " + inQuotes(shown.text) + std::string{word(textStyles, shown.style)} +
               std::string{word(textColors, shown.color)};
    }
    std::string operator()(const Image& image) const
    {
        return "image " + std::string{word(imageSources, image.source)} + " " + inQuotes(image.name);
    }
    std::string operator()(const Button& button) const
    {
        std::string line = withLabel("button", button.title) + std::string{word(buttonRoles, button.role)};
        if (button.shortcut) {
            line += ", key " + std::string{word(keys, *button.shortcut)};
        }
        return button.image ? line + ", " + (*this)(*button.image) : line;
    }
    std::string operator()(const Toggle& toggle) const
    {
        return withLabel("checkbox", toggle.label) + (toggle.isOn.value ? " on" : " off");
    }
    std::string operator()(const Slider& slider) const
    {
        std::string line = withLabel("slider", slider.label) + " " + number(slider.value.value) + " of " +
                           number(slider.lower) + " to " + number(slider.upper);
        if (slider.step) {
            line += " by " + number(*slider.step);
        }
        return slider.valueText.empty() ? line : line + ", shown as " + inQuotes(slider.valueText);
    }
    std::string operator()(const TextField& field) const
    {
        return withLabel("field", field.prompt) + " = " + inQuotes(field.text.value);
    }
    std::string operator()(const SecureField& field) const
    {
        return withLabel("secure field", field.prompt) + " = " + inQuotes(dots(field.text.value));
    }
    std::string operator()(const List& list) const
    {
        std::string line = "list" + std::string{word(selectionModes, list.mode)};
        for (const std::string& row : list.selection.value) {
            line += ", selected " + inQuotes(row);
        }
        return line;
    }
    std::string operator()(const Form& /*form*/) const { return "form"; }
    std::string operator()(const Section& section) const
    {
        const std::string line = withLabel("section", section.header);
        return section.footer.empty() ? line : line + ", footer " + inQuotes(section.footer);
    }
    std::string operator()(const SplitView& split) const
    {
        return split.isSidebarShown.value ? "split view" : "split view, sidebar hidden";
    }
    std::string operator()(const Progress& progress) const
    {
        const std::string line = withLabel("progress", progress.label);
        return progress.fraction ? line + " " + number(*progress.fraction) : line;
    }
    std::string operator()(const Toolbar& /*toolbar*/) const { return "toolbar"; }
    std::string operator()(const Sheet& /*sheet*/) const { return "sheet"; }
    std::string operator()(const Dialog& dialog) const
    {
        const std::string line = withLabel(word(dialogKinds, dialog.kind), dialog.title);
        return dialog.message.empty() ? line : line + ": " + inQuotes(dialog.message);
    }
};

std::string describeTraits(const Node& node)
{
    const Traits& traits = node.view->traits;
    std::string line;
    if (!traits.accessibilityLabel.empty()) {
        line += ", read as " + inQuotes(traits.accessibilityLabel);
    }
    if (!traits.help.empty()) {
        line += ", help " + inQuotes(traits.help);
    }
    if (traits.background) {
        line += *traits.background == black ? ", on black" : ", on a colour";
    }
    if (traits.ignoresSafeAreas) {
        line += ", to the edges";
    }
    for (const auto& [key, action] : traits.keyCommands) {
        line += ", on " + std::string{word(keys, key)};
    }
    if (isInteractive(*node.view)) {
        line += " [" + node.identity + "]";
    }
    if (traits.focus && traits.focus->value) {
        line += " focused";
    }
    return traits.isDisabled ? line + " disabled" : line;
}

bool isField(const View& view)
{
    return elementOf<TextField>(view) != nullptr || elementOf<SecureField>(view) != nullptr;
}

} // namespace

std::string describe(const View& root)
{
    std::string lines;
    for (const Node& node : nodesOf(root)) {
        lines += std::string(2 * node.depth, ' ') + std::visit(Describe{}, node.view->element) + describeTraits(node);
        lines += '\n';
    }
    return lines;
}

std::vector<std::string> visibleTexts(const View& root)
{
    std::vector<std::string> texts;
    const auto add = [&](const std::string& shown) {
        if (!shown.empty()) {
            texts.push_back(shown);
        }
    };
    for (const Node& node : nodesOf(root)) {
        if (isField(*node.view)) {
            continue;
        }
        add(visibleText(*node.view));
        if (const auto* const slider = elementOf<Slider>(*node.view)) {
            add(slider->valueText);
        } else if (const auto* const section = elementOf<Section>(*node.view)) {
            add(section->footer);
        } else if (const auto* const dialog = elementOf<Dialog>(*node.view)) {
            add(dialog->message);
        }
    }
    return texts;
}

} // namespace sentrel::ui
