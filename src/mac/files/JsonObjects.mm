#include "mac/files/JsonObjects.hpp"

#include "mac/foundation/FoundationText.hpp"

#include <nlohmann/json.hpp>

#include <cmath>

namespace sentrel::mac {

namespace {

std::optional<Json> valueOf(id object, std::size_t levels);

std::optional<Json> numberOf(NSNumber* number)
{
    if (CFGetTypeID((__bridge CFTypeRef)number) == CFBooleanGetTypeID()) {
        return Json(static_cast<bool>(number.boolValue));
    }
    if (CFNumberIsFloatType((__bridge CFNumberRef)number)) {
        return std::isfinite(number.doubleValue) ? std::optional{Json(number.doubleValue)} : std::nullopt;
    }
    return Json(std::int64_t{number.longLongValue});
}

Json arrayOf(NSArray* objects, std::size_t levels)
{
    Json array = Json::array();
    for (const id element in objects) {
        array.push_back(valueOf(element, levels).value_or(Json(nullptr)));
    }
    return array;
}

Json objectOf(NSDictionary* dictionary, std::size_t levels)
{
    Json object = Json::object();
    for (const id key in dictionary) {
        if (![key isKindOfClass:NSString.class]) {
            continue;
        }
        if (auto value = valueOf(dictionary[key], levels)) {
            object[textOf(static_cast<NSString*>(key))] = std::move(*value);
        }
    }
    return object;
}

/// None for a value that JSON can't hold, or below `levels` of arrays and objects.
std::optional<Json> valueOf(id object, std::size_t levels)
{
    if ([object isKindOfClass:NSString.class]) {
        return Json(textOf(static_cast<NSString*>(object)));
    }
    if ([object isKindOfClass:NSNumber.class]) {
        return numberOf(object);
    }
    if (object == NSNull.null) {
        return Json(nullptr);
    }
    if (levels == 0) {
        return std::nullopt;
    }
    if ([object isKindOfClass:NSArray.class]) {
        return arrayOf(object, levels - 1);
    }
    if ([object isKindOfClass:NSDictionary.class]) {
        return objectOf(object, levels - 1);
    }
    return std::nullopt;
}

} // namespace

Json jsonOf(NSDictionary* dictionary)
{
    return objectOf(dictionary, mostJsonLevels - 1);
}

NSDictionary* dictionaryObject(const Json& object)
{
    if (!object.is_object()) {
        return nil;
    }
    const std::string text = encodeJson(object);
    NSData* const data = [NSData dataWithBytes:text.data() length:text.size()];
    const id parsed = [NSJSONSerialization JSONObjectWithData:data options:NSJSONReadingOptions {} error:nil];
    return [parsed isKindOfClass:NSDictionary.class] ? parsed : nil;
}

} // namespace sentrel::mac
