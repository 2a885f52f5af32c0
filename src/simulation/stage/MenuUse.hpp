#pragma once

#include <string>

namespace sentrel::simulation {

/// What a person does with the menu: opens or closes it, or presses a view in it.
struct MenuUse {
    enum class Kind { open, close, press };
    Kind kind = Kind::press;
    std::string wanted; ///< the view's text or identity
};

} // namespace sentrel::simulation
