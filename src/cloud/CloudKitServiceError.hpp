#pragma once

#include <exception>
#include <string>
#include <utility>

namespace sentrel {

/// The cloud service's own failures, detected without asking the server. `what` is the English message and the key of
/// the localised one.
class CloudKitServiceError : public std::exception {
public:
    enum class Kind { uploadFailed, notSignedIn, networkUnavailable };

    explicit CloudKitServiceError(Kind itsKind);

    /// A failed upload with its own message.
    [[nodiscard]] static CloudKitServiceError uploadFailed(std::string message);

    [[nodiscard]] Kind kind() const { return kind_; }
    [[nodiscard]] const char* what() const noexcept override { return message_.c_str(); }

private:
    CloudKitServiceError(Kind kind, std::string message) : kind_(kind), message_(std::move(message)) {}

    Kind kind_;
    std::string message_;
};

} // namespace sentrel
