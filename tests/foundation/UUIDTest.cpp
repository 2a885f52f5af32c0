#include "foundation/UUID.hpp"

#include <gtest/gtest.h>

namespace sentrel {
namespace {

TEST(UUID, ReadsEitherCaseAndWritesUpperCase)
{
    const auto uuid = UUID::parse("00112233-4455-6677-8899-aAbBcCdDeEfF");
    ASSERT_NE(uuid, std::nullopt);
    EXPECT_EQ(uuid->text(), "00112233-4455-6677-8899-AABBCCDDEEFF");
}

TEST(UUID, RefusesEverythingButTheStandardForm)
{
    for (const char* text : {"", "00112233445566778899AABBCCDDEEFF", "00112233-4455-6677-8899-AABBCCDDEEF",
                             "00112233-4455-6677-8899-AABBCCDDEEFFF", "{0112233-4455-6677-8899-AABBCCDDEEFF",
                             "0011223-34455-6677-8899-AABBCCDDEEFF", "00112233-4455-6677-8899-AABBCCDDEEFG",
                             "00112233-4455-6677-8899-AABBCCDDEE F"}) {
        EXPECT_EQ(UUID::parse(text), std::nullopt) << text;
    }
}

TEST(UUID, ARandomOneSaysSo)
{
    UUID::Octets octets;
    octets.fill(0xFF);
    EXPECT_EQ(UUID::fromRandom(octets).text(), "FFFFFFFF-FFFF-4FFF-BFFF-FFFFFFFFFFFF");
}

} // namespace
} // namespace sentrel
