#include "lock/PasscodeRecord.hpp"

#include <algorithm>

namespace sentrel {

namespace {

constexpr std::uint8_t recordVersion = 1;
constexpr std::size_t iterationsOffset = 1;
constexpr std::size_t saltOffset = 5;
constexpr std::size_t keyOffset = 21;

/// Ten times what this version writes. More iterations could keep the lock screen busy for minutes.
constexpr std::uint32_t mostIterations = 2'100'000;

std::uint32_t readBigEndian(std::span<const std::uint8_t, 4> bytes)
{
    std::uint32_t value = 0;
    for (const std::uint8_t byte : bytes) {
        value = value << 8 | byte;
    }
    return value;
}

void writeBigEndian(std::uint32_t value, std::span<std::uint8_t, 4> bytes)
{
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(value >> 24);
        value <<= 8;
    }
}

} // namespace

std::optional<PasscodeRecord> PasscodeRecord::parse(BytesView record)
{
    if (record.size() != passcodeRecordLength || record[0] != recordVersion) {
        return std::nullopt;
    }
    const std::uint32_t iterations = readBigEndian(record.subspan<iterationsOffset, 4>());
    if (iterations < 1 || iterations > mostIterations) {
        return std::nullopt;
    }
    return PasscodeRecord{iterations, record.subspan<saltOffset, passcodeSaltLength>(),
                          record.subspan<keyOffset, passcodeKeyLength>()};
}

std::span<std::uint8_t, passcodeKeyLength>
PasscodeRecord::writeHeader(std::span<std::uint8_t, passcodeRecordLength> record, std::uint32_t iterations,
                            std::span<const std::uint8_t, passcodeSaltLength> salt)
{
    record[0] = recordVersion;
    writeBigEndian(iterations, record.subspan<iterationsOffset, 4>());
    std::ranges::copy(salt, record.begin() + saltOffset);
    return record.subspan<keyOffset, passcodeKeyLength>();
}

std::optional<LegacyPasscodeRecord> LegacyPasscodeRecord::parse(BytesView record)
{
    if (record.size() != legacyPasscodeRecordLength) {
        return std::nullopt;
    }
    return LegacyPasscodeRecord{record.first<passcodeSaltLength>(), record.last<passcodeKeyLength>()};
}

} // namespace sentrel
