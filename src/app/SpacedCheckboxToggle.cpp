#include "app/SpacedCheckboxToggle.hpp"

namespace sentrel {

ui::View SpacedCheckboxToggle::body() const
{
    constexpr double spacing = 2.0;
    return ui::toggle(label, isOn).padding(spacing);
}

} // namespace sentrel
