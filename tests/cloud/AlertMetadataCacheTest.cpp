#include "cloud/AlertMetadataCache.hpp"

#include "ports/Journal.hpp"
#include "posix/PosixFileSystem.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/VirtualMachine.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace sentrel {
namespace {

using namespace std::chrono_literals;

class QuietJournal final : public ports::Journal {
public:
    void write(std::string_view /*event*/, std::initializer_list<Field> /*fields*/) override {}
};

AlertEvent cachedAlert(std::uint8_t number)
{
    UUID::Octets octets{};
    octets[0] = number;
    return {UUID{octets}, TriggerReason::motion, Date{8e8 + number}, "Maya's MacBook Pro", std::nullopt, true};
}

struct AlertMetadataCacheTest : testing::Test {
    [[nodiscard]] std::unique_ptr<AlertMetadataCache> opened()
    {
        return std::make_unique<AlertMetadataCache>(MainActor{machine.scheduler}, files, journal, folder.path(),
                                                    "maya");
    }

    /// Makes one change, lets it reach the disk, and expects the file to hold what the cache holds.
    void expectSaved(AlertMetadataCache& cache, const std::function<void()>& change, std::size_t count)
    {
        change();
        machine.clock.advance(2s);
        const auto file = files.read(folder.path() / AlertMetadataCache::fileName);
        const auto contents = file ? decodeAlertCache(*file) : std::nullopt;
        ASSERT_TRUE(contents);
        EXPECT_EQ(contents->alerts, cache.alerts());
        EXPECT_EQ(contents->alerts.size(), count);
    }

    TemporaryFolder folder;
    test::VirtualMachine machine;
    posix::PosixFileSystem files;
    QuietJournal journal;
};

TEST_F(AlertMetadataCacheTest, EachSaveHoldsAllAlertsWhateverHasChangedSinceTheOneBefore)
{
    const AlertEvent first = cachedAlert(1);
    const AlertEvent second = cachedAlert(2);
    AlertEvent renamed = first;
    renamed.deviceName = "Another name";
    auto cache = opened();
    expectSaved(*cache, [&] { cache->insert({{first.id, first}, {second.id, second}}); }, 2);
    expectSaved(*cache, [&] { cache->insert({{first.id, renamed}}); }, 2);
    expectSaved(*cache, [&] { cache->setPhoto(second.id, true); }, 2);
    expectSaved(*cache, [&] { cache->setComplete(); }, 2);

    cache = opened();
    const AlertEvent third = cachedAlert(3);
    expectSaved(*cache, [&] { cache->insert({{third.id, third}}); }, 3);
    expectSaved(*cache, [&] { cache->erase({first.id}); }, 2);
    AlertEvent undated = cachedAlert(4);
    undated.timestamp = Date{std::numeric_limits<double>::infinity()};
    cache->insert({{undated.id, undated}});
    machine.clock.advance(2s);
    expectSaved(*cache, [&] { cache->erase({undated.id}); }, 2);
    cache->insert({{first.id, first}});
    expectSaved(*cache, [&] { cache->startOver("tom"); }, 0);
    expectSaved(*cache, [&] { cache->insert({{third.id, third}}); }, 1);
}

} // namespace
} // namespace sentrel
