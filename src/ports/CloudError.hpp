#pragma once

#include <exception>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace sentrel::ports {

/// A failure that the cloud reports.
class CloudError : public std::exception {
public:
    CloudError(std::string itsDomain, int itsCode, std::string itsDescription)
        : domain(std::move(itsDomain)), code(itsCode), description(std::move(itsDescription))
    {
    }

    [[nodiscard]] const char* what() const noexcept override { return description.c_str(); }

    std::string domain;
    int code;
    std::string description;                      ///< the system's own words, in the user's language
    std::optional<double> retryAfter;             ///< seconds
    std::map<std::string, CloudError> itemErrors; ///< of a partial failure, by record name
};

} // namespace sentrel::ports
