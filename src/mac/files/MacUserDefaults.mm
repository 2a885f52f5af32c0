#include "mac/files/MacUserDefaults.hpp"

#include "mac/foundation/FoundationText.hpp"

namespace sentrel::mac {

std::optional<Bytes> MacUserDefaults::data(const std::string& key)
{
    const id value = [NSUserDefaults.standardUserDefaults objectForKey:stringObject(key)];
    if (![value isKindOfClass:[NSData class]]) {
        return std::nullopt;
    }
    NSData* const data = value;
    const auto* const first = static_cast<const std::uint8_t*>(data.bytes);
    return Bytes(first, first + data.length);
}

void MacUserDefaults::setData(const std::string& key, BytesView value)
{
    NSData* const data = [NSData dataWithBytes:value.data() length:value.size()];
    [NSUserDefaults.standardUserDefaults setObject:data forKey:stringObject(key)];
}

std::optional<std::string> MacUserDefaults::text(const std::string& key)
{
    // Not stringForKey:, which makes texts of numbers.
    const id value = [NSUserDefaults.standardUserDefaults objectForKey:stringObject(key)];
    if (![value isKindOfClass:[NSString class]]) {
        return std::nullopt;
    }
    return textOf(static_cast<NSString*>(value));
}

void MacUserDefaults::setText(const std::string& key, const std::string& value)
{
    [NSUserDefaults.standardUserDefaults setObject:stringObject(value) forKey:stringObject(key)];
}

std::optional<std::vector<std::string>> MacUserDefaults::texts(const std::string& key)
{
    NSArray<NSString*>* const array = [NSUserDefaults.standardUserDefaults stringArrayForKey:stringObject(key)];
    if (array == nil) {
        return std::nullopt;
    }
    std::vector<std::string> texts;
    texts.reserve(array.count);
    for (NSString* const element in array) {
        texts.push_back(textOf(element));
    }
    return texts;
}

void MacUserDefaults::setTexts(const std::string& key, const std::vector<std::string>& value)
{
    NSMutableArray<NSString*>* const array = [NSMutableArray arrayWithCapacity:value.size()];
    for (const std::string& text : value) {
        [array addObject:stringObject(text)];
    }
    [NSUserDefaults.standardUserDefaults setObject:array forKey:stringObject(key)];
}

std::optional<std::int64_t> MacUserDefaults::integer(const std::string& key)
{
    // Not integerForKey:, which makes numbers of texts and zero of everything else.
    const id value = [NSUserDefaults.standardUserDefaults objectForKey:stringObject(key)];
    if (![value isKindOfClass:[NSNumber class]]) {
        return std::nullopt;
    }
    return static_cast<NSNumber*>(value).longLongValue;
}

void MacUserDefaults::setInteger(const std::string& key, std::int64_t value)
{
    [NSUserDefaults.standardUserDefaults setInteger:value forKey:stringObject(key)];
}

void MacUserDefaults::remove(const std::string& key)
{
    [NSUserDefaults.standardUserDefaults removeObjectForKey:stringObject(key)];
}

} // namespace sentrel::mac
