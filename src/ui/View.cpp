#include "ui/View.hpp"

namespace sentrel::ui {

Children::Children(std::vector<View> views)
    : views_(views.empty() ? nullptr : std::make_shared<const std::vector<View>>(std::move(views)))
{
}

Children::Children(std::initializer_list<View> views) : Children(std::vector<View>{views})
{
}

Children::operator const std::vector<View>&() const
{
    static const std::vector<View> none;
    return views_ == nullptr ? none : *views_;
}

const View* Children::begin() const
{
    return views_ == nullptr ? nullptr : views_->data();
}

const View* Children::end() const
{
    return begin() + size();
}

const View& Children::front() const
{
    return views_->front();
}

const View& Children::operator[](std::size_t index) const
{
    return (*views_)[index];
}

std::size_t Children::size() const
{
    return views_ == nullptr ? 0 : views_->size();
}

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

View view(Element element, Children children)
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
