#include "foundation/Bytes.hpp"

namespace sentrel {

Bytes bytesOf(std::string_view text)
{
    return Bytes{text.begin(), text.end()};
}

std::string_view textOf(BytesView bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

} // namespace sentrel
