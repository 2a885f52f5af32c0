#pragma once

#include "foundation/SecretBytes.hpp"

#include <memory>
#include <string_view>
#include <utility>

namespace sentrel {

/// UTF-8 text that must not stay in memory after use: the content of a secure field. Copies share the bytes, which are
/// wiped with the last copy.
class SecretText {
public:
    /// The empty text.
    SecretText() = default;
    explicit SecretText(SecretBytes bytes)
        : bytes_(bytes.empty() ? nullptr : std::make_shared<const SecretBytes>(std::move(bytes)))
    {
    }

    /// A copy of the text, whose owner still has to wipe it.
    explicit SecretText(std::string_view text) : SecretText(SecretBytes{text}) {}

    [[nodiscard]] bool empty() const { return bytes_ == nullptr; }
    [[nodiscard]] BytesView view() const { return bytes_ == nullptr ? BytesView{} : bytes_->view(); }

    friend bool operator==(const SecretText& left, const SecretText& right)
    {
        return equalInConstantTime(left.view(), right.view());
    }

private:
    std::shared_ptr<const SecretBytes> bytes_;
};

} // namespace sentrel
