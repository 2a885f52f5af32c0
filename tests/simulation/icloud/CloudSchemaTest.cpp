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

class CloudIndexTest : public testing::Test, protected CloudScene {};

TEST_F(CloudIndexTest, WhatTheSchemaDoesNotIndexCanNeitherBeQueriedNorSubscribedTo)
{
    const ports::CloudPredicate everything;
    const ports::CloudPredicate byNotification{"sendNotification == %@", {std::int64_t{1}}};
    const ports::CloudPredicate byName{"deviceName == %@", {std::string{"Desk"}}};
    const ports::CloudPredicate byBoth{"sendNotification == %@ AND deviceName == %@",
                                       {std::int64_t{1}, std::string{"Desk"}}};
    struct Case {
        const char* type;
        ports::CloudPredicate predicate;
        const char* sortKey;
        bool isAllowed;
    };
    const Case queries[] = {
        {"AlertEvent", everything, "", true},
        {"AlertEvent", everything, "timestamp", true},
        {"AlertEvent", byNotification, "", true},
        {"AlertEvent", {"timestamp > %@", {Date{1.0}}}, "", true},
        {"AlertEvent", byName, "", false},
        {"AlertEvent", byBoth, "", false},
        {"AlertEvent", {"modificationDate > %@", {Date{1.0}}}, "", false},
        {"AlertEvent", everything, "creationDate", false},
        {"AlertEvent", everything, "sendNotification", false}, // queryable only
        {"AlertCatalog", everything, "", false},               // recordName is not queryable
        {"Thing", byName, "creationDate", true},               // a development container's own type
    };
    for (const auto& [type, predicate, sortKey, isAllowed] : queries) {
        EXPECT_EQ(code(mac.database.query({type, predicate, sortKey, true}, std::nullopt, 0)),
                  isAllowed ? 0 : CKError::invalidArguments)
            << type << ' ' << predicate.format << ' ' << sortKey;
    }
    for (const bool isAllowed : {true, false}) {
        const ports::CloudSubscription subscription{
            "s", "AlertEvent", isAllowed ? byNotification : byName, 1, {}, {}, {}, {}, true};
        EXPECT_EQ(code(done(mac.database.saveSubscription(subscription))), isAllowed ? 0 : CKError::invalidArguments);
    }
}

} // namespace
} // namespace sentrel::simulation
