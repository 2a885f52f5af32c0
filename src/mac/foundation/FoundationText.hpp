#pragma once

#import <Foundation/Foundation.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace sentrel::mac {

/// The text as a string object. A text that is not valid UTF-8 is read as Latin-1. Never nil. Any thread.
[[nodiscard]] NSString* stringObject(std::string_view text);

/// A string object's text in UTF-8; half of a surrogate pair becomes a replacement character. Any thread.
[[nodiscard]] std::string textOf(NSString* string);

/// The path of a file URL. Any thread.
[[nodiscard]] std::filesystem::path pathOf(NSURL* url);

} // namespace sentrel::mac
