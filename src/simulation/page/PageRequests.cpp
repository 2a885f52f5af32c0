#include "simulation/page/PageRequests.hpp"

#include "foundation/Json.hpp"
#include "simulation/page/LiveMac.hpp"
#include "simulation/page/PageControls.hpp"
#include "simulation/page/RequestBody.hpp"
#include "simulation/stage/Action.hpp"
#include "simulation/stage/ScenarioError.hpp"
#include "simulation/stage/YamlValue.hpp"

#include <algorithm>
#include <array>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>

namespace sentrel::simulation {

namespace {

PageAnswer refused(std::string why)
{
    return {409, std::move(why)};
}

/// Whether the request names a file anywhere: pages must not access the host's files.
bool namesFile(const Json& value)
{
    if (value.is_object()) {
        for (const auto& [key, item] : value.items()) {
            if (key == "file" || key == "photo" || key == "recording" || namesFile(item)) {
                return true;
            }
        }
    } else if (value.is_array()) {
        return std::ranges::any_of(value, namesFile);
    }
    return false;
}

PageAnswer doAction(LiveMac& mac, const Json& body)
{
    if (namesFile(body)) {
        return {400, "A page can't name files."};
    }
    try {
        std::string why = mac.perform(readAction(parseYaml(body.dump()), {}));
        return why.empty() ? PageAnswer{} : refused(std::move(why));
    } catch (const SourceFault& fault) {
        return {400, fault.what()};
    }
}

PageAnswer launch(LiveMac& mac, const Json& /*body*/)
{
    return mac.call([](MacSession& session) -> PageAnswer {
        if (session.app() != nullptr) {
            return refused("Sentrel is already running.");
        }
        session.launch();
        return {};
    });
}

PageAnswer replace(LiveMac& mac, const Json& /*body*/)
{
    std::string why = mac.replace();
    return why.empty() ? PageAnswer{} : refused(std::move(why));
}

struct RequestRow {
    std::string_view name;
    bool isObject; ///< its body must be one
    PageAnswer (*answer)(LiveMac& mac, const Json& body);
};

constexpr std::array<RequestRow, 7> requests{{
    {"action", false, doAction},
    {"ui", true, useTree},
    {"window", true, useWindow},
    {"menu", true, useMenu},
    {"panel", true, usePanel},
    {"launch", true, launch},
    {"replace", true, replace},
}};

} // namespace

PageAnswer answerPage(LiveMac& mac, const std::string& name, const std::string& body)
{
    const auto request = std::ranges::find(requests, name, &RequestRow::name);
    if (request == requests.end()) {
        return {404, "The request is unknown."};
    }
    const auto document = parseJson(bytesOf(body));
    if (!document) {
        return {400, "The request is not JSON."};
    }
    try {
        if (request->isObject && !document->is_object()) {
            throw BadRequest{"the body must be an object"};
        }
        return request->answer(mac, *document);
    } catch (const BadRequest& bad) {
        return {400, "The request can't be understood: " + bad.why + "."};
    }
}

std::vector<std::string_view> requestNames()
{
    std::vector<std::string_view> names{webcamRequest};
    std::ranges::transform(requests, std::back_inserter(names), &RequestRow::name);
    return names;
}

PageAnswer showWebcam(LiveMac& mac, const std::string& jpeg)
{
    const Bytes content{jpeg.begin(), jpeg.end()};
    return mac.call([&](MacSession& session) -> PageAnswer {
        if (content.empty()) {
            session.mac().camera.setPhotoFile(std::nullopt);
            return {};
        }
        if (!session.mac().imageCodec.pixelSize(content)) {
            return {400, "The picture is not a JPEG file."};
        }
        session.mac().camera.setPhotoFile(content);
        return {};
    });
}

} // namespace sentrel::simulation
