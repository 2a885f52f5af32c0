#include "simulation/mac/files/Base64.hpp"

#include <openssl/evp.h>

namespace sentrel::simulation {

std::string base64Text(BytesView bytes)
{
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0'); // the library adds a null
    EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes.data(), static_cast<int>(bytes.size()));
    text.pop_back();
    return text;
}

std::optional<Bytes> bytesOfBase64(std::string_view text)
{
    const int padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    Bytes bytes(text.size() / 4 * 3);
    const int decoded = EVP_DecodeBlock(bytes.data(), reinterpret_cast<const unsigned char*>(text.data()),
                                        static_cast<int>(text.size()));
    if (decoded < padding) {
        return std::nullopt;
    }
    bytes.resize(static_cast<std::size_t>(decoded - padding));
    // The library also takes white space and wrong padding.
    return base64Text(bytes) == text ? std::optional{std::move(bytes)} : std::nullopt;
}

} // namespace sentrel::simulation
