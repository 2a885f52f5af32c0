#include "conformance/Suite.hpp"
#include "ports/CloudConstants.hpp"

namespace sentrel::conformance {

namespace {

/// The fields of a record that the database's type has.
ports::CloudRecord sample()
{
    ports::CloudRecord record;
    record.type = "AlertEvent";
    record.name = "8C2B4B7E-3B0A-4C53-9F0E-0B6C1D2A3E4F";
    record.fields = {
        {"deviceName", std::string{"Maya’s MacBook"}},
        {"sendNotification", std::int64_t{1}},
        {"timestamp", Date{771586860.25}},
    };
    return record;
}

} // namespace

void checkRecords(const Subject& subject, Report& report)
{
    const auto& roundTrip = subject.records.roundTrip;
    const ports::CloudRecord record = sample();
    const ports::CloudRecord back = roundTrip(record);
    report.expect(back.type == record.type && back.name == record.name, "type and name come back", back.name);
    for (const auto& [name, value] : record.fields) {
        const auto found = back.fields.find(name);
        report.expect(found != back.fields.end() && found->second == value, "a field comes back as it was", name);
    }
    report.expect(back.fields.size() == record.fields.size(), "no field is added");
    report.expect(!back.systemFields.empty(), "the system's own fields are kept");

    ports::CloudRecord again = back;
    again.fields["deviceName"] = std::string{"another"};
    const ports::CloudRecord changed = roundTrip(again);
    report.expect(changed.name == record.name && changed.fields == again.fields,
                  "a fetched record takes changes over its system fields");
    again.systemFields = {1, 2, 3};
    report.expect(roundTrip(again).fields == again.fields, "system fields that nobody can read make a new record");

    for (const std::string& name : {std::string{}, std::string(256, 'a'), std::string{"_mine"}, std::string{"Größe"}}) {
        ports::CloudRecord misnamed = record;
        misnamed.name = name;
        report.expectCloudError(CloudErrorCode::invalidArguments, "no name for a record: '" + name.substr(0, 9) + "'",
                                [&] { static_cast<void>(roundTrip(misnamed)); });
    }

    ports::CloudQuery query;
    query.recordType = "AlertEvent";
    const auto accepts = [&](const ports::CloudPredicate& predicate) {
        query.predicate = predicate;
        try {
            subject.records.makeQuery(query);
            return true;
        } catch (const ports::CloudError&) {
            return false;
        }
    };
    report.expect(accepts({}), "a query for all records");
    report.expect(accepts({"timestamp > %@", {Date{1.0}}}), "a query by date");
    report.expect(accepts({"requestedArmState IN %@", {std::vector<std::int64_t>{0, 1}}}), "a query by a set");
    query.predicate = {"this is no predicate (", {}};
    report.expectCloudError(CloudErrorCode::invalidArguments, "a predicate that can't be read",
                            [&] { subject.records.makeQuery(query); });
}

} // namespace sentrel::conformance
