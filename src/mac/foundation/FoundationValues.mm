#include "mac/foundation/FoundationValues.hpp"

namespace sentrel::mac {

NSString* stringObject(std::string_view text)
{
    NSString* const string = [[NSString alloc] initWithBytes:text.data()
                                                      length:text.size()
                                                    encoding:NSUTF8StringEncoding];
    if (string != nil) {
        return string;
    }
    return [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSISOLatin1StringEncoding];
}

std::string textOf(NSString* string)
{
    NSData* const data = [string dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES];
    return {static_cast<const char*>(data.bytes), data.length};
}

std::optional<std::string> optionalText(NSString* string)
{
    return string == nil ? std::nullopt : std::optional{textOf(string)};
}

NSArray<NSString*>* stringObjects(const std::vector<std::string>& texts)
{
    return objectsOf(texts, stringObject);
}

Bytes bytesOf(NSData* data)
{
    const auto* const first = static_cast<const std::uint8_t*>(data.bytes);
    return Bytes(first, first + data.length);
}

NSData* unownedData(BytesView bytes)
{
    return [NSData dataWithBytesNoCopy:const_cast<std::uint8_t*>(bytes.data()) length:bytes.size() freeWhenDone:NO];
}

NSDate* dateObject(Date date)
{
    return [NSDate dateWithTimeIntervalSinceReferenceDate:date.secondsSinceReferenceDate];
}

Date dateOf(NSDate* date)
{
    return {date.timeIntervalSinceReferenceDate};
}

NSURL* fileURL(const std::filesystem::path& file)
{
    return [NSURL fileURLWithPath:stringObject(file.native()) isDirectory:NO];
}

std::filesystem::path pathOf(NSURL* url)
{
    return url.fileSystemRepresentation;
}

} // namespace sentrel::mac
