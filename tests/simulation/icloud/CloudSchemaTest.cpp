#include "simulation/icloud/CloudSchema.hpp"

#include "cloud/AlertCatalog.hpp"
#include "simulation/icloud/CloudScene.hpp"
#include "simulation/icloud/Sqlite.hpp"
#include "simulation/stage/MacSession.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAreArray;

/// "TYPE FIELD KIND INDEXES" for each field that the file declares.
std::vector<std::string> declaredInFile()
{
    std::ifstream file{std::filesystem::path{SENTREL_SOURCE_DIR} / "resources" / "cloudkit-schema.ckdb"};
    const std::regex typeLine{R"(\s*RECORD TYPE (\w+) \()"};
    const std::regex fieldLine{R"re(\s*"?(\w+)"?\s+((?:LIST<)?[A-Z0-9]+>?)((?: QUERYABLE)?(?: SORTABLE)?),)re"};
    const std::regex otherLine{R"(\s*(//.*|GRANT [\w, "]+|\);|DEFINE SCHEMA|))"};
    std::vector<std::string> fields;
    std::string type;
    std::smatch match;
    for (std::string line; std::getline(file, line);) {
        if (std::regex_match(line, match, typeLine)) {
            type = match[1];
        } else if (!std::regex_match(line, otherLine)) {
            EXPECT_TRUE(std::regex_match(line, match, fieldLine)) << line;
            fields.push_back(type + " " + match.str(1) + " " + match.str(2) + match.str(3));
        }
    }
    return fields;
}

std::vector<std::string> declaredInServer()
{
    std::vector<std::string> fields;
    for (const CloudField& field : cloudSchema()) {
        fields.push_back(std::string{field.type} + " " + std::string{field.name} + " " + std::string{field.kind} +
                         (field.isQueryable ? " QUERYABLE" : "") + (field.isSortable ? " SORTABLE" : ""));
    }
    return fields;
}

TEST(CloudSchema, TheFileDeclaresWhatTheServerGoesBy)
{
    EXPECT_THAT(declaredInServer(), ElementsAreArray(declaredInFile()));
}

TEST(CloudSchema, ItDeclaresExactlyTheFieldsThatTheMacAndThePhoneWrite)
{
    constexpr std::array kinds{"STRING", "INT64", "DOUBLE", "TIMESTAMP", "LIST<STRING>", "ASSET"}; // of ServerValue
    const TemporaryFolder disk;
    {
        MacDescription description;
        description.camera.devices = {CameraModel{}};
        description.iCloud.account = ports::CloudAccountStatus::available;
        MacSession session{description, disk.path(), SENTREL_SOURCE_DIR "/resources", 1};
        session.launch();
        session.clock().advance(1min);
        session.commandByPhone({});
        session.clock().advance(1min);
        session.mac().power.setAC(false);
        session.clock().advance(1min);
    }
    std::set<std::string> written;
    SqliteDatabase database{disk.path() / "iCloud" / "owner.sqlite"};
    SqliteStatement row =
        database.prepare("SELECT r.type, f.name, f.kind FROM fields f JOIN records r ON r.id = f.record");
    for (row.start(); row.next();) {
        written.insert(row.text(0) + " " + row.text(1) + " " + kinds.at(static_cast<std::size_t>(row.integer(2))));
    }
    // Set once a catalog has dropped its oldest alerts, beyond the twenty-thousandth.
    written.insert(std::string{AlertCatalog::recordType} + " " + AlertCatalog::isTruncatedField + " INT64");
    std::set<std::string> declared;
    for (const CloudField& field : cloudSchema()) {
        if (!field.name.starts_with("___")) {
            declared.insert(std::string{field.type} + " " + std::string{field.name} + " " + std::string{field.kind});
        }
    }
    EXPECT_EQ(written, declared);
}

class CloudIndexTest : public testing::Test, protected CloudScene {
protected:
    int queryCode(const std::string& type, ports::CloudPredicate predicate, const std::string& sortKey = "")
    {
        return code(mac.database.query({type, std::move(predicate), sortKey, true}, std::nullopt, 0));
    }
    int subscriptionCode(const std::string& type, ports::CloudPredicate predicate)
    {
        ports::CloudSubscription subscription{"s", type, std::move(predicate), 1, {}, {}, {}, {}, true};
        return code(done(mac.database.saveSubscription(subscription)));
    }
};

TEST_F(CloudIndexTest, WhatTheSchemaDoesNotIndexCanNeitherBeQueriedNorSubscribedTo)
{
    const ports::CloudPredicate everything;
    const ports::CloudPredicate byNotification{"sendNotification == %@", {std::int64_t{1}}};
    const ports::CloudPredicate byName{"deviceName == %@", {std::string{"Desk"}}};
    const ports::CloudPredicate byBoth{"sendNotification == %@ AND deviceName == %@",
                                       {std::int64_t{1}, std::string{"Desk"}}};
    const ports::CloudPredicate later{"timestamp > %@", {Date{1.0}}};
    const ports::CloudPredicate changedLater{"modificationDate > %@", {Date{1.0}}};
    const ports::CloudPredicate byCommand{"requestedArmState IN %@", {std::vector<std::int64_t>{0, 1}}};
    constexpr int refused = CKError::invalidArguments;

    EXPECT_EQ(queryCode("AlertEvent", everything), 0);
    EXPECT_EQ(queryCode("AlertEvent", everything, "timestamp"), 0);
    EXPECT_EQ(queryCode("AlertEvent", byNotification), 0);
    EXPECT_EQ(queryCode("AlertEvent", later), 0);
    EXPECT_EQ(queryCode("AlertEvent", byName), refused);
    EXPECT_EQ(queryCode("AlertEvent", byBoth), refused);
    EXPECT_EQ(queryCode("AlertEvent", changedLater), refused);
    EXPECT_EQ(queryCode("AlertEvent", everything, "creationDate"), refused);
    EXPECT_EQ(queryCode("AlertEvent", everything, "sendNotification"), refused) << "queryable only";
    EXPECT_EQ(queryCode("AlertCatalog", everything), refused) << "recordName is not queryable";
    EXPECT_EQ(queryCode("Thing", byName, "creationDate"), 0) << "a development container's own type";

    EXPECT_EQ(subscriptionCode("AlertEvent", byNotification), 0);
    EXPECT_EQ(subscriptionCode("MacDeviceCatalog", byCommand), 0);
    EXPECT_EQ(subscriptionCode("AlertEvent", byName), refused);
    EXPECT_EQ(subscriptionCode("MacDeviceCatalog", everything), refused);
}

} // namespace
} // namespace sentrel::simulation
