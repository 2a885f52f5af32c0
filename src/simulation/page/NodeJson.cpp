#include "simulation/page/NodeJson.hpp"

#include "simulation/page/PageFiles.hpp"
#include "ui/Node.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <variant>

namespace sentrel::simulation {

namespace {

constexpr std::array<std::pair<ui::Key, std::string_view>, 3> keys{{
    {ui::Key::returnKey, "return"},
    {ui::Key::deleteKey, "delete"},
    {ui::Key::escape, "escape"},
}};

std::string hexOf(const ui::Color& color)
{
    const auto byte = [](double part) {
        return static_cast<unsigned>(std::lround(std::clamp(part, 0.0, 1.0) * 255.0));
    };
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "#%02x%02x%02x%02x", byte(color.red), byte(color.green), byte(color.blue),
                  byte(color.opacity));
    return text.data();
}

const char* nameOf(ui::Stack::Alignment alignment)
{
    constexpr std::array names{"leading", "center", "trailing"};
    return names[static_cast<std::size_t>(alignment)];
}

Json imageJson(const ui::Image& image, PageFiles& files)
{
    if (image.source == ui::Image::Source::systemSymbol) {
        return {{"source", "symbol"}, {"name", image.name}};
    }
    if (image.data != nullptr) {
        return {{"source", "data"}, {"url", files.addImage(image.data)}};
    }
    return {{"source", "symbol"}, {"name", "photo.badge.exclamationmark"}};
}

/// Adds the fields of each kind of view to its node.
struct ElementWriter {
    Json& node;
    PageFiles& files;

    void operator()(const ui::Stack& stack) const
    {
        constexpr std::array kinds{"hstack", "vstack"};
        node["kind"] = kinds[static_cast<std::size_t>(stack.axis)];
        node["spacing"] = stack.spacing;
        node["align"] = nameOf(stack.alignment);
    }
    void operator()(const ui::Spacer& /*spacer*/) const { node["kind"] = "spacer"; }
    void operator()(const ui::Divider& /*divider*/) const { node["kind"] = "divider"; }
    void operator()(const ui::Form& /*form*/) const { node["kind"] = "form"; }
    void operator()(const ui::Toolbar& /*toolbar*/) const { node["kind"] = "toolbar"; }
    void operator()(const ui::Text& text) const
    {
        constexpr std::array styles{"largeTitle", "title", "headline", "body", "callout", "caption"};
        constexpr std::array colors{"primary", "secondary", "alarm"};
        node["kind"] = "text";
        node["text"] = text.text;
        node["style"] = styles[static_cast<std::size_t>(text.style)];
        node["color"] = colors[static_cast<std::size_t>(text.color)];
    }
    void operator()(const ui::Image& image) const
    {
        node["kind"] = "image";
        node.update(imageJson(image, files));
    }
    void operator()(const ui::Button& button) const
    {
        constexpr std::array roles{"standard", "prominent", "destructive", "cancel"};
        node["kind"] = "button";
        node["text"] = button.title;
        node["role"] = roles[static_cast<std::size_t>(button.role)];
        if (button.shortcut) {
            node["key"] = simulation::nameOf(*button.shortcut);
        }
        if (button.image) {
            node["image"] = imageJson(*button.image, files);
        }
    }
    void operator()(const ui::Toggle& toggle) const
    {
        node["kind"] = "toggle";
        node["text"] = toggle.label;
        node["on"] = toggle.isOn.value;
    }
    void operator()(const ui::Slider& slider) const
    {
        node["kind"] = "slider";
        node["text"] = slider.label;
        node["value"] = slider.value.value;
        node["lower"] = slider.lower;
        node["upper"] = slider.upper;
        if (slider.step) {
            node["step"] = *slider.step;
        }
        if (!slider.valueText.empty()) {
            node["valueText"] = slider.valueText;
        }
    }
    void operator()(const ui::TextField& field) const
    {
        node["kind"] = "field";
        node["prompt"] = field.prompt;
        node["value"] = field.text.value;
    }
    void operator()(const ui::SecureField& field) const
    {
        node["kind"] = "secure";
        node["prompt"] = field.prompt;
        // The length reveals no more than a row of dots.
        node["length"] = field.text.value.view().size();
    }
    void operator()(const ui::List& list) const
    {
        constexpr std::array modes{"none", "single", "multiple"};
        node["kind"] = "list";
        node["mode"] = modes[static_cast<std::size_t>(list.mode)];
        node["selection"] = Json(list.selection.value);
    }
    void operator()(const ui::Section& section) const
    {
        node["kind"] = "section";
        node["header"] = section.header;
        node["footer"] = section.footer;
    }
    void operator()(const ui::SplitView& split) const
    {
        node["kind"] = "split";
        node["isSidebarShown"] = split.isSidebarShown.value;
    }
    void operator()(const ui::Progress& progress) const
    {
        node["kind"] = "progress";
        node["text"] = progress.label;
        if (progress.fraction) {
            node["fraction"] = *progress.fraction;
        }
    }
    void operator()(const ui::Sheet& /*sheet*/) const { node["kind"] = "sheetContent"; }
    void operator()(const ui::Dialog& dialog) const
    {
        node["kind"] = "dialogContent";
        node["title"] = dialog.title;
        node["message"] = dialog.message;
        node["isAlert"] = dialog.kind == ui::Dialog::Kind::alert;
    }
};

void addTraits(Json& node, const ui::Traits& traits, bool isEnabled)
{
    const auto addText = [&](const char* key, const std::string& text) {
        if (!text.empty()) {
            node[key] = text;
        }
    };
    const auto addLength = [&](const char* key, const std::optional<double>& length) {
        if (length) {
            node[key] = *length;
        }
    };
    addText("label", traits.accessibilityLabel);
    addText("help", traits.help);
    if (!isEnabled) {
        node["disabled"] = true;
    }
    if (traits.padding > 0.0) {
        node["padding"] = traits.padding;
    }
    addLength("width", traits.size.width);
    addLength("height", traits.size.height);
    addLength("maxWidth", traits.size.maximumWidth);
    if (traits.background) {
        node["background"] = hexOf(*traits.background);
    }
}

Json write(const ui::View& view, const std::string& identity, bool isEnabled, PageFiles& files);

/// The toolbar's children go into the node itself; a sheet and a dialog are nodes of their own.
void addAttachments(Json& node, const ui::View& view, const std::string& identity, bool isEnabled, PageFiles& files)
{
    for (const ui::View& attachment : view.attachments) {
        if (attachment.traits.isHidden) {
            continue;
        }
        Json inner =
            write(attachment, ui::identityInside(identity, ui::stepOfAttachment(attachment)), isEnabled, files);
        if (ui::elementOf<ui::Toolbar>(attachment) != nullptr) {
            node["toolbar"] = inner.value("children", Json::array());
        } else {
            node[ui::elementOf<ui::Sheet>(attachment) != nullptr ? "sheet" : "dialog"] = std::move(inner);
        }
    }
}

Json write(const ui::View& view, const std::string& identity, bool isEnabled, PageFiles& files)
{
    const bool isThisEnabled = isEnabled && !view.traits.isDisabled;
    Json node{{"id", identity}};
    std::visit(ElementWriter{node, files}, view.element);
    addTraits(node, view.traits, isThisEnabled);
    Json children = Json::array();
    for (std::size_t index = 0; index < view.children.size(); ++index) {
        const ui::View& child = view.children[index];
        if (!child.traits.isHidden) {
            children.push_back(
                write(child, ui::identityInside(identity, ui::stepOf(child, index)), isThisEnabled, files));
        }
    }
    if (!children.empty()) {
        node["children"] = std::move(children);
    }
    addAttachments(node, view, identity, isThisEnabled, files);
    return node;
}

} // namespace

std::string_view nameOf(ui::Key key)
{
    return keys[static_cast<std::size_t>(key)].second;
}

std::optional<ui::Key> keyNamed(std::string_view name)
{
    for (const auto& [key, itsName] : keys) {
        if (itsName == name) {
            return key;
        }
    }
    return std::nullopt;
}

Json nodeJson(const ui::View& root, PageFiles& files)
{
    return write(root, "", true, files);
}

} // namespace sentrel::simulation
