#include "app/ViewParts.hpp"

namespace sentrel {

ui::Image symbol(std::string name)
{
    return {ui::Image::Source::systemSymbol, std::move(name)};
}

ui::View symbolButton(std::string title, std::string symbolName, ui::Action action, ui::Button::Role role)
{
    ui::Button button;
    button.title = std::move(title);
    button.action = std::move(action);
    button.role = role;
    button.image = symbol(std::move(symbolName));
    return ui::view(std::move(button));
}

ui::View emptyPane(std::string symbolName, std::string title, std::string message)
{
    constexpr double messageWidth = 320.0;
    ui::SizeWish size;
    size.maximumWidth = messageWidth;
    return ui::verticalStack({
        ui::spacer(),
        ui::view(symbol(std::move(symbolName))),
        ui::text(std::move(title), ui::Text::Style::title),
        ui::text(std::move(message), ui::Text::Style::body, ui::Text::Color::secondary).sized(size),
        ui::spacer(),
    });
}

ui::View warning(std::string text)
{
    return ui::text(std::move(text), ui::Text::Style::callout, ui::Text::Color::alarm);
}

} // namespace sentrel
