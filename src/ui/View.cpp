#include "ui/View.hpp"

namespace sentrel::ui {

View View::id(std::string value) &&
{
    traits.id = std::move(value);
    return std::move(*this);
}

View View::accessibilityLabel(std::string value) &&
{
    traits.accessibilityLabel = std::move(value);
    return std::move(*this);
}

View View::help(std::string value) &&
{
    traits.help = std::move(value);
    return std::move(*this);
}

View View::hidden(bool value) &&
{
    traits.isHidden = value;
    return std::move(*this);
}

View View::disabled(bool value) &&
{
    traits.isDisabled = value;
    return std::move(*this);
}

View View::ignoringSafeAreas() &&
{
    traits.ignoresSafeAreas = true;
    return std::move(*this);
}

View View::padding(double value) &&
{
    traits.padding = value;
    return std::move(*this);
}

View View::sized(SizeWish value) &&
{
    traits.size = value;
    return std::move(*this);
}

View View::background(Color value) &&
{
    traits.background = value;
    return std::move(*this);
}

View View::focused(Binding<bool> value) &&
{
    traits.focus = std::move(value);
    return std::move(*this);
}

View View::onKey(Key key, Action action) &&
{
    traits.keyCommands.emplace_back(key, std::move(action));
    return std::move(*this);
}

View View::attach(View attachment) &&
{
    attachments.push_back(std::move(attachment));
    return std::move(*this);
}

View view(Element element, std::vector<View> children)
{
    View made;
    made.element = std::move(element);
    made.children = std::move(children);
    return made;
}

View verticalStack(std::vector<View> children, double spacing, Stack::Alignment alignment)
{
    return view(Stack{Stack::Axis::vertical, spacing, alignment}, std::move(children));
}

View horizontalStack(std::vector<View> children, double spacing, Stack::Alignment alignment)
{
    return view(Stack{Stack::Axis::horizontal, spacing, alignment}, std::move(children));
}

View spacer()
{
    return view(Spacer{});
}

View divider()
{
    return view(Divider{});
}

View text(std::string shown, Text::Style style, Text::Color color)
{
    return view(Text{std::move(shown), style, color});
}

View button(std::string title, Action action, Button::Role role)
{
    Button made;
    made.title = std::move(title);
    made.action = std::move(action);
    made.role = role;
    return view(std::move(made));
}

View toggle(std::string label, Binding<bool> isOn)
{
    Toggle made;
    made.label = std::move(label);
    made.isOn = std::move(isOn);
    return view(std::move(made));
}

View section(std::string header, std::vector<View> children)
{
    return view(Section{std::move(header), {}}, std::move(children));
}

} // namespace sentrel::ui
