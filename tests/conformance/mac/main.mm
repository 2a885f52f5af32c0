#include "app/SentrelApp.hpp"
#include "conformance/Suite.hpp"
#include "conformance/mac/OffScreen.hpp"
#include "mac/MacPlatform.hpp"
#include "mac/cloud/CloudRecords.hpp"
#include "mac/foundation/FoundationValues.hpp"

#import <AppKit/AppKit.h>

#include <cstdio>
#include <exception>

// Runs the conformance suites over the adapters of this Mac.
//
//     sentrel-conformance RESOURCES PICTURES
//
// RESOURCES is the folder of the localisation tables, PICTURES receives a picture of each window. The exit status is 0
// when all suites pass. Asks for no permission and changes nothing but a user-defaults entry of its own.

namespace {

using namespace sentrel;
using mac::stringObject;
using mac::textOf;

/// The texts of one table, whatever the user's language.
class TableLanguage final : public ports::Language {
public:
    TableLanguage(ports::Language& user, NSBundle* table) : user_(user), table_(table) {}
    [[nodiscard]] std::string localized(std::string_view key) override
    {
        return textOf([table_ localizedStringForKey:stringObject(key) value:nil table:nil]);
    }
    [[nodiscard]] bool containsIgnoringCase(std::string_view text, std::string_view part) override
    {
        return user_.containsIgnoringCase(text, part);
    }
    [[nodiscard]] std::size_t characterCount(std::string_view text) override { return user_.characterCount(text); }

private:
    ports::Language& user_;
    NSBundle* const table_;
};

std::unique_ptr<ports::Language> languageOf(ports::Language& user, const std::filesystem::path& resources,
                                            const std::string& identifier)
{
    NSBundle* const table = [NSBundle bundleWithPath:stringObject((resources / (identifier + ".lproj")).native())];
    return table == nil ? nullptr : std::make_unique<TableLanguage>(user, table);
}

/// Serves the main run loop, and with it the main queue, for this time.
void pass(sentrel::Duration span)
{
    NSDate* const end = [NSDate dateWithTimeIntervalSinceNow:toSeconds(span)];
    while (end.timeIntervalSinceNow > 0.0) {
        @autoreleasepool {
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, end.timeIntervalSinceNow, true);
        }
    }
}

/// Runs the suite; the number of its failures.
std::size_t run(const conformance::Suite& suite, const conformance::Subject& subject)
{
    conformance::Report report;
    @try {
        try {
            suite.run(subject, report);
        } catch (const std::exception& error) {
            report.expect(false, "an exception ended the suite", error.what());
        }
    } @catch (NSException* exception) {
        report.expect(false, "an exception ended the suite", textOf(exception.description));
    }
    const bool hasPassed = report.failures().empty();
    std::printf("%s %s (%d checks)\n", hasPassed ? "PASS" : "FAIL", suite.name, report.checks());
    for (const std::string& failure : report.failures()) {
        std::printf("     %s\n", failure.c_str());
    }
    std::fflush(stdout);
    return report.failures().size();
}

std::size_t runAll(const std::filesystem::path& resources, const std::filesystem::path& pictures)
{
    mac::MacPlatform platform{CloudKitService::containerIdentifier};
    ports::Platform& ports = platform.ports();
    const auto folder = ports.host.temporaryDirectory() / textOf(NSUUID.UUID.UUIDString);
    std::filesystem::create_directories(folder);
    std::filesystem::create_directories(pictures);
    const conformance::Subject subject{
        .platform = ports,
        .pass = pass,
        .folder = folder,
        .renderer = conformance::offScreenRenderer(pictures),
        .records = {
            .roundTrip = [](const ports::CloudRecord& record) { return mac::cloudRecordOf(mac::recordObject(record)); },
            .makeQuery = [](const ports::CloudQuery& query) { static_cast<void>(mac::queryObject(query)); }},
        .language = [&](const std::string& identifier) { return languageOf(ports.language, resources, identifier); },
    };
    std::size_t failures = 0;
    for (const conformance::Suite& suite : conformance::suites()) {
        failures += run(suite, subject);
    }
    std::filesystem::remove_all(folder);
    return failures;
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 3) {
        std::fprintf(stderr, "usage: sentrel-conformance RESOURCES PICTURES\n");
        return 2;
    }
    @autoreleasepool {
        // Pending tasks of the system end with the process, not with the platform.
        std::exit(runAll(arguments[1], arguments[2]) == 0 ? 0 : 1);
    }
}
