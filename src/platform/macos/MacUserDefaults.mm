#include "platform/macos/MacUserDefaults.hpp"

#include "platform/macos/FoundationText.hpp"

namespace sentrel::macos {

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

void MacUserDefaults::remove(const std::string& key)
{
    [NSUserDefaults.standardUserDefaults removeObjectForKey:stringObject(key)];
}

} // namespace sentrel::macos
