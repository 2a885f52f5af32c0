#include "platform/macos/MacLanguage.hpp"

#include "platform/macos/FoundationText.hpp"

#import <Foundation/Foundation.h>

namespace sentrel::macos {

std::string MacLanguage::localized(std::string_view key)
{
    return textOf([NSBundle.mainBundle localizedStringForKey:stringObject(key) value:nil table:nil]);
}

bool MacLanguage::containsIgnoringCase(std::string_view text, std::string_view part)
{
    return [stringObject(text) localizedCaseInsensitiveContainsString:stringObject(part)];
}

} // namespace sentrel::macos
