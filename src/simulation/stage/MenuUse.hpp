#pragma once

#include <string>

namespace sentrel::simulation {

/// A person's use of the menu: it is opened or closed, or a view in it is pressed.
struct MenuUse {
    enum class Kind { open, close, press };
    Kind kind = Kind::press;
    std::string wanted; ///< the view's text or identity
};

} // namespace sentrel::simulation
