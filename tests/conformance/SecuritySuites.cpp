#include "conformance/Suite.hpp"
#include "ports/Cryptography.hpp"
#include "ports/Random.hpp"
#include "ports/SystemConstants.hpp"
#include "support/Hex.hpp"

#include <algorithm>
#include <array>
#include <span>

namespace sentrel::conformance {

namespace {

Bytes digestOf(ports::Sha256Context& context, std::initializer_list<std::string_view> parts)
{
    for (const std::string_view part : parts) {
        context.update(bytesOf(part));
    }
    std::array<std::uint8_t, ports::sha256Length> digest{};
    context.finish(digest);
    return {digest.begin(), digest.end()};
}

} // namespace

void checkCryptography(const Subject& subject, Report& report)
{
    ports::Cryptography& cryptography = subject.platform.cryptography;
    const auto derive = [&](std::string_view password, std::string_view salt, std::uint32_t rounds, std::size_t length,
                            std::uint32_t algorithm = ports::algorithmPbkdf2) {
        Bytes key(length);
        const std::int32_t status = cryptography.deriveKey(algorithm, bytesOf(password), bytesOf(salt),
                                                           ports::pseudoRandomFunctionHmacSha256, rounds, key);
        return status == ports::securitySuccess ? std::optional{key} : std::nullopt;
    };
    // RFC 7914, section 11.
    const Bytes first = bytesOfHex("55ac046e56e3089fec1691c22544b605f94185216dde0465e68b9d57c20dacbc"
                                   "49ca9cccf179b645991664b39d77ef317c71b845b1e30bd509112041d3a19783");
    report.expect(derive("passwd", "salt", 1, 64) == first, "PBKDF2 with HMAC-SHA-256, one round");
    report.expect(derive("password", "salt", 4096, 32) ==
                      bytesOfHex("c5e478d59288c841aa530db6845c4c8d962893a001ce4e11a4963873aa98134a"),
                  "PBKDF2 with HMAC-SHA-256, 4096 rounds");
    report.expect(derive("", "salt", 1, 32).has_value(), "an empty password is allowed");
    report.expect(!derive("passwd", "salt", 1, 0), "an empty key is refused");
    report.expect(!derive("passwd", "salt", 0, 32), "no rounds are refused");
    report.expect(!derive("passwd", "salt", 1, 32, 99), "an unknown algorithm is refused");

    const auto context = cryptography.makeSha256Context();
    const Bytes ofNothing = bytesOfHex("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    const Bytes ofAbc = bytesOfHex("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    report.expect(digestOf(*context, {"abc"}) == ofAbc, "SHA-256 of a text");
    report.expect(digestOf(*context, {"a", "", "bc"}) == ofAbc, "SHA-256 in parts, by the same context");
    report.expect(digestOf(*context, {}) == ofNothing, "SHA-256 of nothing");
}

void checkRandom(const Subject& subject, Report& report)
{
    constexpr std::size_t draws = 20000;
    std::array<std::uint8_t, 32> one{};
    std::array<std::uint8_t, 32> other{};
    report.expect(subject.platform.random.fill(one) && subject.platform.random.fill(other), "bytes are drawn");
    report.expect(one != other, "two draws differ");
    report.expect(std::ranges::any_of(std::span{one}.last(8), [](std::uint8_t byte) { return byte != 0; }),
                  "the whole span is filled");
    report.expect(subject.platform.random.fill({}), "no bytes can be drawn");
    std::array<int, 256> counts{};
    for (std::size_t draw = 0; draw < draws; ++draw) {
        ++counts.at(subject.platform.generalRandom.nextByte());
    }
    // Of 20,000 draws, each value is expected 78 times; 20 or 160 times never happens.
    const auto [least, most] = std::ranges::minmax(counts);
    report.expect(least > 20 && most < 160, "all bytes are equally likely",
                  std::to_string(least) + " to " + std::to_string(most));
}

} // namespace sentrel::conformance
