#pragma once

#include "foundation/Bytes.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace sentrel {

/// Lengths in bytes of what the passcode records are made of.
inline constexpr std::size_t passcodeSaltLength = 16;
inline constexpr std::size_t passcodeKeyLength = 32;

/// The current form: version (1), iteration count (4, big-endian), salt, derived key. 53 bytes.
inline constexpr std::size_t passcodeRecordLength = 1 + 4 + passcodeSaltLength + passcodeKeyLength;

/// The form of older versions: salt and digest. 48 bytes.
inline constexpr std::size_t legacyPasscodeRecordLength = passcodeSaltLength + passcodeKeyLength;

/// The fields of a current record, looking into its bytes.
struct PasscodeRecord {
    std::uint32_t iterations = 0;
    std::span<const std::uint8_t, passcodeSaltLength> salt;
    std::span<const std::uint8_t, passcodeKeyLength> key;

    /// Reads a record; none unless its length, its version and its iteration count (1 to 2,100,000) are right.
    static std::optional<PasscodeRecord> parse(BytesView record);

    /// Writes the record in front of its key: version, iterations and salt. The rest is left to be filled in with the
    /// key, which is returned.
    static std::span<std::uint8_t, passcodeKeyLength>
    writeHeader(std::span<std::uint8_t, passcodeRecordLength> record, std::uint32_t iterations,
                std::span<const std::uint8_t, passcodeSaltLength> salt);
};

/// The fields of a legacy record, looking into its bytes.
struct LegacyPasscodeRecord {
    std::span<const std::uint8_t, passcodeSaltLength> salt;
    std::span<const std::uint8_t, passcodeKeyLength> digest;

    /// Reads a record; none unless its length is right.
    static std::optional<LegacyPasscodeRecord> parse(BytesView record);
};

} // namespace sentrel
