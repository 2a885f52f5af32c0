#include "simulation/mac/display/SimulatedLoginItem.hpp"

#include "foundation/Json.hpp"
#include "ports/DurableFile.hpp"
#include "ports/FileSystem.hpp"
#include "ports/Journal.hpp"
#include "simulation/Events.hpp"

#include <nlohmann/json.hpp>

#include <system_error>
#include <utility>

namespace sentrel::simulation {

namespace {

// SMAppServiceStatus
constexpr std::int64_t notRegistered = 0;
constexpr std::int64_t enabled = 1;
constexpr std::int64_t requiresApproval = 2;
constexpr std::int64_t notFound = 3;

constexpr std::uint32_t itemFileMode = 0600;
constexpr std::uint32_t itemFolderMode = 0700;

} // namespace

SimulatedLoginItem::SimulatedLoginItem(ports::FileSystem& files, ports::Journal& journal, std::filesystem::path file)
    : files_(files), journal_(journal), file_(std::move(file))
{
}

std::int64_t SimulatedLoginItem::status()
{
    faults_.call("status");
    const PortCalls::DeviceScope scope;
    const auto content = files_.read(file_);
    const auto document = content ? parseJson(*content) : std::nullopt;
    const Json* const status = document ? member(*document, "status") : nullptr;
    const bool isStatus =
        status != nullptr && status->is_number_integer() && *status >= notRegistered && *status <= notFound;
    return isStatus ? status->get<std::int64_t>() : notRegistered;
}

std::optional<std::string> SimulatedLoginItem::registerItem()
{
    faults_.call("registerItem");
    if (faults_.strikes("register")) {
        return "Operation not permitted";
    }
    return setStatus(faults_.strikes("approval") ? requiresApproval : enabled);
}

std::optional<std::string> SimulatedLoginItem::unregisterItem()
{
    faults_.call("unregisterItem");
    return faults_.strikes("unregister") ? std::optional<std::string>{"Operation not permitted"}
                                         : setStatus(notRegistered);
}

std::optional<std::string> SimulatedLoginItem::setStatus(std::int64_t status)
{
    const PortCalls::DeviceScope scope;
    files_.createDirectories(file_.parent_path(), itemFolderMode);
    Json document = Json::object();
    document["status"] = status;
    const int error = ports::writeDurably(files_, file_, bytesOf(encodeJson(document)), itemFileMode);
    if (error != 0) {
        return std::generic_category().message(error);
    }
    journal_.note(events::LoginItemChanged{status});
    return std::nullopt;
}

} // namespace sentrel::simulation
