#include "simulation/icloud/CloudScene.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace sentrel::simulation {
namespace {

using namespace std::string_literals;
using ports::CloudDesiredKeys;
using ports::CloudPredicate;
using ports::CloudQuery;
using ports::CloudQueryPage;
using ports::CloudRecord;
using ports::CloudSavePolicy;
using ports::CloudValue;
using testing::ElementsAre;

constexpr auto unlessChanged = CloudSavePolicy::ifServerRecordUnchanged;
constexpr auto changedKeys = CloudSavePolicy::changedKeys;
constexpr auto allKeys = CloudSavePolicy::allKeys;

class SimulatedCloudDatabaseTest : public testing::Test, protected CloudScene {
protected:
    CloudRecord saved(CloudRecord record) { return answer(database.save(std::move(record))); }
    CloudRecord fetched(const std::string& name) { return answer(database.record(name)); }

    /// The outcome for one record that is saved by a policy.
    int saveCode(CloudRecord record, CloudSavePolicy policy)
    {
        const std::string name = record.name;
        return codeOf(answer(database.modify({std::move(record)}, {}, policy, false)).saved.at(name));
    }

    std::vector<std::string> found(CloudPredicate predicate, const std::string& sortKey = "", bool isAscending = true)
    {
        return namesOf(answer(database.query({"Thing", std::move(predicate), sortKey, isAscending}, std::nullopt, 0)));
    }

    static std::vector<std::string> namesOf(const CloudQueryPage& page)
    {
        std::vector<std::string> names;
        for (const auto& [name, result] : page.results) {
            names.push_back(name);
        }
        return names;
    }

    SimulatedCloudDatabase& database = mac.database;
};

TEST_F(SimulatedCloudDatabaseTest, WhoSavesWhatOthersChangedLearnsOfItByEachPolicy)
{
    CloudRecord old = saved(thing("one", {{"mine", 1.0}, {"theirs", 1.0}}));
    CloudRecord theirs = thing("one", {{"theirs", 2.0}});
    EXPECT_EQ(saveCode(theirs, unlessChanged), CKError::serverRecordChanged) << "a new one of a name that exists";
    EXPECT_EQ(saveCode(theirs, changedKeys), 0);

    old.fields = {{"mine", 3.0}};
    EXPECT_EQ(saveCode(old, unlessChanged), CKError::serverRecordChanged);
    EXPECT_EQ(code(database.save(old)), CKError::serverRecordChanged);
    EXPECT_EQ(saveCode(old, allKeys), 0);
    EXPECT_EQ(fetched("one").fields, (std::map<std::string, CloudValue>{{"mine", 3.0}, {"theirs", 2.0}}));
    EXPECT_EQ(saveCode(fetched("one"), unlessChanged), 0);

    CloudRecord otherType = thing("one");
    otherType.type = "Other";
    EXPECT_EQ(saveCode(otherType, changedKeys), CKError::invalidArguments);

    const CloudRecord last = fetched("one");
    EXPECT_FALSE(answer(database.modify({}, {"one"}, unlessChanged, false)).deleted.at("one"));
    EXPECT_EQ(answer(database.modify({}, {"one"}, unlessChanged, false)).deleted.at("one")->code, CKError::unknownItem);
    for (const CloudSavePolicy policy : {unlessChanged, changedKeys, allKeys}) {
        EXPECT_EQ(saveCode(last, policy), CKError::unknownItem) << "deleted by others";
    }
    saved(thing("one"));
    EXPECT_EQ(saveCode(last, unlessChanged), CKError::serverRecordChanged) << "another of the same name";
}

TEST_F(SimulatedCloudDatabaseTest, EachRecordOfABatchHasItsOwnFateAndAnAtomicOneIsRefused)
{
    saved(thing("there"));
    saved(thing("old"));
    EXPECT_EQ(code(database.modify({thing("new")}, {"old"}, unlessChanged, true)), CKError::invalidArguments);
    EXPECT_THAT(found({}), ElementsAre("there", "old"));

    const auto result = answer(database.modify({thing("new"), thing("there")}, {"old"}, unlessChanged, false));
    EXPECT_EQ(codeOf(result.saved.at("new")), 0);
    EXPECT_EQ(codeOf(result.saved.at("there")), CKError::serverRecordChanged);
    EXPECT_FALSE(result.deleted.at("old"));
    EXPECT_THAT(found({}), ElementsAre("there", "new"));
}

TEST_F(SimulatedCloudDatabaseTest, HostileRecordsAreRefused)
{
    const std::string megabyte(1024 * 1024, 'x');
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<std::pair<CloudRecord, int>> table{
        {thing("big", {{"a", megabyte}}), CKError::limitExceeded},
        {thing("big", {{"a", std::vector(1024, std::string(1024, 'x'))}}), CKError::limitExceeded},
        {thing("bad", {{"a", "\xFF"s}}), CKError::invalidArguments},
        {thing("bad", {{"a", std::vector{"\xC3"s}}}), CKError::invalidArguments},
        {thing("bad", {{"a", nan}}), CKError::invalidArguments},
        {thing("bad", {{"a", Date{nan}}}), CKError::invalidArguments},
        {thing("bad", {{"", 1.0}}), CKError::invalidArguments},
        {thing("bad", {{"a b", 1.0}}), CKError::invalidArguments},
        {thing("bad", {{"modificationDate", Date{}}}), CKError::invalidArguments},
        {thing(""), CKError::invalidArguments},
        {thing("_mine"), CKError::invalidArguments},
        {thing("nul\0"s), CKError::invalidArguments},
        {thing("\u00e4"), CKError::invalidArguments},
        {thing(std::string(256, 'x')), CKError::invalidArguments},
        {{"Robert'); DROP TABLE records", "bad", {}, {}, {}}, CKError::invalidArguments},
        {thing("gone", {{"a", ports::CloudAsset{"nowhere.jpg"}}}), CKError::assetFileNotFound},
    };
    for (const auto& [record, expected] : table) {
        EXPECT_EQ(code(database.save(record)), expected) << record.name.substr(0, 9);
    }
    EXPECT_EQ(code(database.records({"\0"s}, {})), CKError::invalidArguments);
    EXPECT_EQ(code(database.modify({thing("x"), thing("x")}, {}, allKeys, false)), CKError::invalidArguments);
    EXPECT_EQ(code(database.modify({}, std::vector(401, "x"s), allKeys, false)), CKError::limitExceeded);
    EXPECT_EQ(code(database.records(std::vector(401, "x"s), {})), CKError::limitExceeded);
    EXPECT_EQ(server.count("owner", "Thing"), 0U);
}

TEST_F(SimulatedCloudDatabaseTest, PredicatesSelectWhatIsOfTheirArgumentsKind)
{
    saved(thing("a", {{"word", "x"s}, {"number", std::int64_t{1}}, {"at", Date{10.0}}}));
    saved(thing("b", {{"word", "y"s}, {"number", std::int64_t{2}}, {"at", Date{20.0}}}));
    saved(thing("c", {{"word", std::int64_t{1}}, {"number", 2.0}, {"at", "20"s}}));
    answer(database.save({"Other", "d", {{"word", "x"s}}, {}, {}}));

    EXPECT_THAT(found({}), ElementsAre("a", "b", "c"));
    EXPECT_THAT(found({"word == %@", {"x"s}}), ElementsAre("a"));
    EXPECT_THAT(found({"word = %@ AND number = %@", {"y"s, std::int64_t{2}}}), ElementsAre("b"));
    EXPECT_THAT(found({"number IN %@", {std::vector<std::int64_t>{0, 2}}}), ElementsAre("b"));
    EXPECT_THAT(found({"number IN %@", {std::vector<std::int64_t>{}}}), ElementsAre());
    EXPECT_THAT(found({"at > %@", {Date{10.0}}}), ElementsAre("b"));
    EXPECT_THAT(found({"modificationDate > %@", {*fetched("a").modificationDate}}), ElementsAre("b", "c"));
    EXPECT_THAT(found({}, "number", false), ElementsAre("b", "c", "a"));
    EXPECT_THAT(found({}, "creationDate", false), ElementsAre("c", "b", "a"));
    EXPECT_THAT(found({"word == %@", {"' OR 1 --"s}}), ElementsAre());

    const std::vector<CloudPredicate> refused{
        {"", {}},
        {"FALSEPREDICATE", {}},
        {"TRUEPREDICATE", {"x"s}},
        {"word == 'x'", {}},
        {"word == %@", {}},
        {"word == %@ OR word == %@", {"x"s, "y"s}},
        {"word LIKE %@", {"x"s}},
        {"word > %@", {"x"s}},
        {"number IN %@", {std::int64_t{1}}},
        {"number == %@", {std::vector<std::int64_t>{1}}},
        {"modificationDate > %@", {std::int64_t{1}}},
        {"at > %@", {Date{std::numeric_limits<double>::infinity()}}},
    };
    for (const CloudPredicate& predicate : refused) {
        EXPECT_EQ(code(database.query({"Thing", predicate, "", true}, {}, 0)), CKError::invalidArguments)
            << predicate.format;
    }
}

TEST_F(SimulatedCloudDatabaseTest, PagesGoOnWhileRecordsComeAndGo)
{
    std::vector<CloudRecord> many;
    for (int number = 1000; number < 1250; ++number) {
        many.push_back(thing(std::to_string(number), {{"isOld", std::int64_t{1}}}));
    }
    answer(database.modify(many, {}, allKeys, false));
    const CloudQuery query{"Thing", {"isOld == %@", {std::int64_t{1}}}, "", true};
    auto page = answer(database.query(query, CloudDesiredKeys{std::vector<std::string>{}}, 1000));
    ASSERT_EQ(page.results.size(), 200U) << "the server's own limit";
    EXPECT_TRUE(std::get<CloudRecord>(page.results.front().second).fields.empty());
    const auto afterFirst = page.cursor;

    answer(database.modify({thing("1201", {{"isOld", std::int64_t{0}}}), thing("new", {{"isOld", std::int64_t{1}}})},
                           {"1000", "1200", "1203"}, allKeys, false));
    page = answer(database.continueQuery(afterFirst, std::nullopt, 2));
    EXPECT_THAT(namesOf(page), ElementsAre("1202", "1204"));
    std::size_t rest = 0;
    while (page.cursor != nullptr) {
        page = answer(database.continueQuery(page.cursor, std::nullopt, 15));
        rest += page.results.size();
    }
    EXPECT_EQ(rest, 45U);
    EXPECT_THAT(namesOf(answer(database.continueQuery(afterFirst, std::nullopt, 1))), ElementsAre("1202"))
        << "a cursor may be used again";

    EXPECT_EQ(code(database.continueQuery(nullptr, std::nullopt, 1)), CKError::invalidArguments);
    mac.account.signIn("other");
    EXPECT_EQ(code(database.continueQuery(afterFirst, std::nullopt, 1)), CKError::invalidArguments);
}

} // namespace
} // namespace sentrel::simulation
