#pragma once

#include "runtime/Async.hpp"

#include <cstdint>
#include <string>

namespace sentrel::ports {

/// Content of an alert panel, besides its one default button.
struct AlertContent {
    std::uint64_t style = 0; ///< an `NSAlertStyle`
    std::string messageText;
    std::string informativeText;
};

/// Alert panels of the system. Main thread.
class Alerts {
public:
    virtual ~Alerts() = default;

    /// Runs an alert modally (`NSAlert`, `runModal`); gives the modal response once the user has closed it. The main
    /// actor keeps running.
    [[nodiscard]] virtual Async<std::int64_t> runModal(AlertContent content) = 0;
};

} // namespace sentrel::ports
