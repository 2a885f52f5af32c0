#include "mac/files/JsonObjects.hpp"

#include "mac/foundation/FoundationValues.hpp"

#include <nlohmann/json.hpp>

namespace sentrel::mac {

Json jsonOf(NSDictionary* dictionary)
{
    NSMutableDictionary* const entries = [NSMutableDictionary dictionary];
    for (const id key in dictionary) {
        if (as<NSString>(key) != nil && [NSJSONSerialization isValidJSONObject:@[ dictionary[key] ]]) {
            entries[key] = dictionary[key];
        }
    }
    NSData* const data = [NSJSONSerialization dataWithJSONObject:entries options:NSJSONWritingOptions {} error:nil];
    return parseJson(bytesOf(data)).value_or(Json::object());
}

NSDictionary* dictionaryObject(const Json& object)
{
    if (!object.is_object()) {
        return nil;
    }
    const std::string text = encodeJson(object);
    NSData* const data = [NSData dataWithBytes:text.data() length:text.size()];
    return as<NSDictionary>([NSJSONSerialization JSONObjectWithData:data options:NSJSONReadingOptions {} error:nil]);
}

} // namespace sentrel::mac
