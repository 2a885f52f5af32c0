#include "mac/Adapters.hpp"

#include "mac/foundation/FoundationValues.hpp"

#import <Foundation/Foundation.h>

namespace sentrel::mac {

namespace {

/// The main bundle's localisation tables and the user's locale.
class MacLanguage final : public ports::Language {
public:
    [[nodiscard]] std::string localized(std::string_view key) override
    {
        return textOf([NSBundle.mainBundle localizedStringForKey:stringObject(key) value:nil table:nil]);
    }

    [[nodiscard]] bool containsIgnoringCase(std::string_view text, std::string_view part) override
    {
        return [stringObject(text) localizedCaseInsensitiveContainsString:stringObject(part)];
    }

    [[nodiscard]] std::size_t characterCount(std::string_view text) override
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
};

} // namespace

std::unique_ptr<ports::Language> makeLanguage()
{
    return std::make_unique<MacLanguage>();
}

} // namespace sentrel::mac
