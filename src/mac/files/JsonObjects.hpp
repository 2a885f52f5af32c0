#pragma once

#include "foundation/Json.hpp"

#import <Foundation/Foundation.h>

namespace sentrel::mac {

/// The dictionary as a JSON object, without entries whose key is no string or whose value JSON can't hold. Any thread.
[[nodiscard]] Json jsonOf(NSDictionary* dictionary);

/// A JSON object as a dictionary; nil when it is no object. Any thread.
[[nodiscard]] NSDictionary* dictionaryObject(const Json& object);

} // namespace sentrel::mac
