#pragma once

#include "foundation/Json.hpp"

#import <Foundation/Foundation.h>

namespace sentrel::mac {

/// The dictionary as a JSON object: without entries whose keys are no texts, and without values that JSON can't hold;
/// in an array such a value is null, so that the others keep their places. Any thread.
[[nodiscard]] Json jsonOf(NSDictionary* dictionary);

/// A JSON object as a dictionary; nil when it is no object. Any thread.
[[nodiscard]] NSDictionary* dictionaryObject(const Json& object);

} // namespace sentrel::mac
