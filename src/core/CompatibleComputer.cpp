#include "core/CompatibleComputer.hpp"

#include "ports/HostInfo.hpp"

#include <string_view>

namespace sentrel {

namespace {

bool namesMacBook(std::string_view text)
{
    return text.find("MacBook") != std::string_view::npos;
}

/// True for "Mac" followed by a digit: "Mac14,2" is a MacBook Air, "Mac14,3" a Mac mini.
bool namesNoFamily(std::string_view model)
{
    constexpr std::string_view stem = "Mac";
    return model.size() > stem.size() && model.starts_with(stem) && model[stem.size()] >= '0' &&
           model[stem.size()] <= '9';
}

} // namespace

bool isCompatibleComputer(ports::HostInfo& host)
{
    const auto model = host.systemControlText("hw.model");
    if (!model) {
        return false;
    }
    if (namesMacBook(*model)) {
        return true;
    }
    if (!namesNoFamily(*model)) {
        return false;
    }
    const auto productName = host.registryData("IODeviceTree:/product", "product-name");
    return productName && namesMacBook(textOf(*productName));
}

} // namespace sentrel
