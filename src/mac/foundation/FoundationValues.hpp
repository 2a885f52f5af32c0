#pragma once

#include "foundation/Bytes.hpp"
#include "foundation/Date.hpp"

#import <Foundation/Foundation.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Values between the product's types and Foundation's. Any thread.

namespace sentrel::mac {

/// The object if it is of this class, else nil.
template <class Class> [[nodiscard]] Class* as(id object)
{
    return [object isKindOfClass:[Class class]] ? static_cast<Class*>(object) : nil;
}

/// The text as a string object. A text that is not valid UTF-8 is read as Latin-1. Never nil.
[[nodiscard]] NSString* stringObject(std::string_view text);

/// A string object's text in UTF-8; half of a surrogate pair becomes a replacement character.
[[nodiscard]] std::string textOf(NSString* string);

/// The same; none for nil.
[[nodiscard]] std::optional<std::string> optionalText(NSString* string);

/// An object for each element, made by the function.
template <class Elements, class Make> [[nodiscard]] NSArray* objectsOf(const Elements& elements, Make make)
{
    NSMutableArray* const objects = [NSMutableArray arrayWithCapacity:elements.size()];
    for (const auto& element : elements) {
        [objects addObject:make(element)];
    }
    return objects;
}

[[nodiscard]] NSArray<NSString*>* stringObjects(const std::vector<std::string>& texts);

[[nodiscard]] Bytes bytesOf(NSData* data);

/// The bytes as a data object without a copy. They must outlive it.
[[nodiscard]] NSData* unownedData(BytesView bytes);

[[nodiscard]] NSDate* dateObject(Date date);
[[nodiscard]] Date dateOf(NSDate* date);

[[nodiscard]] NSURL* fileURL(const std::filesystem::path& file);
[[nodiscard]] std::filesystem::path pathOf(NSURL* url);

} // namespace sentrel::mac
