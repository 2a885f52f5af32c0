#include "mac/foundation/FoundationText.hpp"

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

std::filesystem::path pathOf(NSURL* url)
{
    return url.fileSystemRepresentation;
}

} // namespace sentrel::mac
