#include "core/CompatibleComputer.hpp"

#include "platform/HostInfo.hpp"

namespace sentrel {

bool isCompatibleComputer(platform::HostInfo& host)
{
    const auto model = host.systemControlText("hw.model");
    return model && model->find("MacBook") != std::string::npos;
}

} // namespace sentrel
