#include "mac/application/MacLanguage.hpp"

#include "mac/foundation/FoundationText.hpp"

#import <Foundation/Foundation.h>

namespace sentrel::mac {

std::string MacLanguage::localized(std::string_view key)
{
    return textOf([NSBundle.mainBundle localizedStringForKey:stringObject(key) value:nil table:nil]);
}

bool MacLanguage::containsIgnoringCase(std::string_view text, std::string_view part)
{
    return [stringObject(text) localizedCaseInsensitiveContainsString:stringObject(part)];
}

std::size_t MacLanguage::characterCount(std::string_view text)
{
    @autoreleasepool {
        NSString* const string = [[NSString alloc] initWithBytesNoCopy:const_cast<char*>(text.data())
                                                                length:text.size()
                                                              encoding:NSUTF8StringEncoding
                                                          freeWhenDone:NO];
        NSUInteger count = 0;
        for (NSUInteger index = 0; index < string.length; ++count) {
            index = NSMaxRange([string rangeOfComposedCharacterSequenceAtIndex:index]);
        }
        return count;
    }
}

} // namespace sentrel::mac
