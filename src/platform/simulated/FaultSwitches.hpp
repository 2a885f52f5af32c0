#pragma once

#include <initializer_list>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulated {

/// The ways in which one simulated device can be made to refuse or fail, each by name and off at first. Any thread.
class FaultSwitches {
public:
    FaultSwitches(std::initializer_list<std::string_view> names);

    /// Makes the device fail that way for this many further uses (negative: until healed; 0: heal now). False when
    /// the device has no such fault.
    bool set(std::string_view name, int times = -1);

    /// Heals everything.
    void clear();

    /// Whether the device must fail now; counts as one use. The name is one of those that it was made with.
    [[nodiscard]] bool strikes(std::string_view name);

    /// All names, for help and for messages.
    [[nodiscard]] std::vector<std::string> names() const;

private:
    mutable std::mutex mutex_;
    std::map<std::string, int, std::less<>> remaining_;
};

} // namespace sentrel::simulated
