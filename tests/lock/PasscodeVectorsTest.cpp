#include "lock/PasscodeMac.hpp"
#include "support/Hex.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace sentrel {
namespace {

using Row = std::vector<std::string>;

/// The rows of a table of published vectors, without its heading; none when it isn't there.
std::vector<Row> rowsOf(const std::string& name)
{
    std::ifstream file{std::filesystem::path{SENTREL_SOURCE_DIR} / ".." / "shared" / "data" / "crypto" / name};
    std::vector<Row> rows;
    std::string line;
    std::getline(file, line);
    while (std::getline(file, line)) {
        Row row;
        std::istringstream columns{line};
        for (std::string column; std::getline(columns, column, '\t');) {
            row.push_back(column == "-" ? "" : column);
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

Bytes joined(BytesView first, BytesView second)
{
    Bytes both{first.begin(), first.end()};
    both.insert(both.end(), second.begin(), second.end());
    return both;
}

TEST(PasscodeVectors, EveryPublishedKeyDerivationAgrees)
{
    const auto rows = rowsOf("pbkdf2.tsv");
    if (rows.empty()) {
        GTEST_SKIP() << "the published vectors (../shared/data/crypto/pbkdf2.tsv) are not here";
    }
    ASSERT_GE(rows.size(), 70U);
    simulation::OpenSslCryptography cryptography;
    PasscodeMac mac;
    int records = 0;
    for (const Row& row : rows) {
        const Bytes password = bytesOfHex(row.at(0));
        const Bytes salt = bytesOfHex(row.at(1));
        const auto rounds = static_cast<std::uint32_t>(std::stoul(row.at(2)));
        const Bytes expected = bytesOfHex(row.at(4));
        Bytes key(std::stoul(row.at(3)));
        EXPECT_EQ(cryptography.deriveKey(2, password, salt, 3, rounds, key), 0) << row.at(5);
        EXPECT_EQ(key, expected) << row.at(0) << " under " << row.at(1) << ", " << row.at(5);
        if (salt.size() == passcodeSaltLength && key.size() == passcodeKeyLength && rounds <= 2'100'000) {
            UnlockPasscodeStore::Salt fixed{};
            std::ranges::copy(salt, fixed.begin());
            const auto record = mac.store.makeRecord(password, fixed, rounds);
            ASSERT_TRUE(record);
            EXPECT_TRUE(std::ranges::equal(record->view().last(passcodeKeyLength), expected));
            EXPECT_TRUE(mac.store.verify(password, record->view()).matches);
            ++records;
        }
    }
    EXPECT_GE(records, 4);
}

TEST(PasscodeVectors, EveryChainedDigestAgrees)
{
    const auto rows = rowsOf("chained_sha256.tsv");
    if (rows.empty()) {
        GTEST_SKIP() << "the published vectors (../shared/data/crypto/chained_sha256.tsv) are not here";
    }
    ASSERT_GE(rows.size(), 5U);
    simulation::OpenSslCryptography cryptography;
    const auto context = cryptography.makeSha256Context();
    PasscodeMac mac;
    int records = 0;
    for (const Row& row : rows) {
        const Bytes password = bytesOfHex(row.at(0));
        const Bytes salt = bytesOfHex(row.at(1));
        const Bytes expected = bytesOfHex(row.at(4));
        Bytes digest(ports::sha256Length);
        const auto bytes = std::span{digest}.first<ports::sha256Length>();
        context->update(salt);
        context->update(password);
        context->finish(bytes);
        EXPECT_EQ(digest, bytesOfHex(row.at(3)));
        for (long round = std::stol(row.at(2)); round > 0; --round) {
            context->update(bytes);
            context->finish(bytes);
        }
        EXPECT_EQ(digest, expected);
        if (salt.size() == passcodeSaltLength) {
            const auto verification = mac.store.verify(password, joined(salt, expected));
            EXPECT_TRUE(verification.matches && verification.needsUpgrade);
            ++records;
        }
    }
    EXPECT_GE(records, 3);
}

} // namespace
} // namespace sentrel
