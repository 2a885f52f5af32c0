#pragma once

#include "foundation/Bytes.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace sentrel {

/// Lengths of the parts of a passcode record, in bytes.
inline constexpr std::size_t passcodeSaltLength = 16;
inline constexpr std::size_t passcodeKeyLength = 32;

/// The current form: version (1), iteration count (4, big-endian), salt, derived key. 53 bytes.
inline constexpr std::size_t passcodeRecordLength = 1 + 4 + passcodeSaltLength + passcodeKeyLength;

/// The records of older versions: salt and digest. 48 bytes.
inline constexpr std::size_t legacyPasscodeRecordLength = passcodeSaltLength + passcodeKeyLength;

/// The fields of a current record, as views into its bytes.
struct PasscodeRecord {
    std::uint32_t iterations = 0;
    std::span<const std::uint8_t, passcodeSaltLength> salt;
    std::span<const std::uint8_t, passcodeKeyLength> key;

    /// Parses a record; none unless its length, version and iteration count (1 to 2,100,000) are valid.
    static std::optional<PasscodeRecord> parse(BytesView record);

    /// Writes version, iterations and salt. Returns the rest of the record, for the caller to fill with the key.
    static std::span<std::uint8_t, passcodeKeyLength>
    writeHeader(std::span<std::uint8_t, passcodeRecordLength> record, std::uint32_t iterations,
                std::span<const std::uint8_t, passcodeSaltLength> salt);
};

/// The fields of a legacy record, as views into its bytes.
struct LegacyPasscodeRecord {
    std::span<const std::uint8_t, passcodeSaltLength> salt;
    std::span<const std::uint8_t, passcodeKeyLength> digest;

    /// Parses a record; none unless its length is right.
    static std::optional<LegacyPasscodeRecord> parse(BytesView record);
};

} // namespace sentrel
