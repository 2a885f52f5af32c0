#include "simulation/icloud/ServerRecord.hpp"

#include "simulation/icloud/CloudErrorNames.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace sentrel::simulation {

namespace {

constexpr std::size_t longestName = 255;
constexpr std::uint64_t mostRecordBytes = 1'048'576; // without assets: CloudKit's limit
constexpr std::uint64_t bytesOfNumber = 8;

// The names of system fields, which no other may have.
constexpr std::array<std::string_view, 8> reservedNames{"recordID",
                                                        "recordType",
                                                        "recordName",
                                                        "creationDate",
                                                        "modificationDate",
                                                        "creatorUserRecordID",
                                                        "lastModifiedUserRecordID",
                                                        "recordChangeTag"};

bool isLetter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

/// Valid for types and fields.
bool isIdentifier(const std::string& name)
{
    const auto isPart = [](char character) {
        return isLetter(character) || (character >= '0' && character <= '9') || character == '_';
    };
    return !name.empty() && name.size() <= longestName && isLetter(name.front()) && std::ranges::all_of(name, isPart);
}

bool isAscii(std::string_view text)
{
    unsigned char anyOf = 0; // without an early end, so that compilers take many characters at a time
    for (const char character : text) {
        anyOf |= static_cast<unsigned char>(character);
    }
    return anyOf < 0x80;
}

std::uint64_t sizeOf(const ServerValue& value)
{
    if (const auto* const text = std::get_if<std::string>(&value)) {
        return text->size();
    }
    if (const auto* const bytes = std::get_if<Bytes>(&value)) {
        return bytes->size();
    }
    if (const auto* const texts = std::get_if<TextList>(&value)) {
        return texts->joined().size();
    }
    return bytesOfNumber;
}

bool isStorable(const ServerValue& value)
{
    if (const auto* const text = std::get_if<std::string>(&value)) {
        return isUtf8(*text);
    }
    if (const auto* const number = std::get_if<double>(&value)) {
        return std::isfinite(*number);
    }
    if (const auto* const date = std::get_if<Date>(&value)) {
        return std::isfinite(date->secondsSinceReferenceDate);
    }
    const auto* const texts = std::get_if<TextList>(&value);
    // All at once first, for a catalog's thousands of identifiers.
    return texts == nullptr || isAscii(texts->joined()) || std::all_of(texts->begin(), texts->end(), isUtf8);
}

} // namespace

std::optional<ports::CloudError> objectionTo(const ServerRecord& record)
{
    if (!isRecordName(record.name) || !isIdentifier(record.type)) {
        return cloudError(CKError::invalidArguments);
    }
    std::uint64_t size = 0;
    for (const auto& [name, value] : record.fields) {
        if (!isIdentifier(name) || std::ranges::find(reservedNames, name) != reservedNames.end() ||
            !isStorable(value)) {
            return cloudError(CKError::invalidArguments);
        }
        size += std::holds_alternative<Bytes>(value) ? 0 : name.size() + sizeOf(value);
    }
    return size > mostRecordBytes ? std::optional{cloudError(CKError::limitExceeded)} : std::nullopt;
}

bool isRecordName(const std::string& name)
{
    const auto isPlain = [](char character) { return character >= ' ' && character <= '~'; };
    return !name.empty() && name.size() <= longestName && name.front() != '_' && std::ranges::all_of(name, isPlain);
}

bool isUtf8(std::string_view text)
{
    if (isAscii(text)) {
        return true;
    }
    try {
        // The strict writer throws for invalid UTF-8.
        return !nlohmann::json(text).dump().empty();
    } catch (const nlohmann::json::type_error&) {
        return false;
    }
}

} // namespace sentrel::simulation
