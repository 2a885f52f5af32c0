#include "simulation/page/RequestBody.hpp"

#include <cmath>
#include <nlohmann/json.hpp>

namespace sentrel::simulation {

const Json& requiredMember(const Json& body, const char* key)
{
    const auto found = body.find(key);
    if (found == body.end()) {
        throw BadRequest{std::string{"'"} + key + "' is missing"};
    }
    return *found;
}

std::string requiredText(const Json& body, const char* key)
{
    const Json& value = requiredMember(body, key);
    if (!value.is_string()) {
        throw BadRequest{std::string{"'"} + key + "' must be a text"};
    }
    return value.get<std::string>();
}

double requiredNumber(const Json& body, const char* key)
{
    const Json& value = requiredMember(body, key);
    if (!value.is_number() || !std::isfinite(value.get<double>())) {
        throw BadRequest{std::string{"'"} + key + "' must be a number"};
    }
    return value.get<double>();
}

bool requiredFlag(const Json& body, const char* key)
{
    const Json& value = requiredMember(body, key);
    if (!value.is_boolean()) {
        throw BadRequest{std::string{"'"} + key + "' must be true or false"};
    }
    return value.get<bool>();
}

} // namespace sentrel::simulation
