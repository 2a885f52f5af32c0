#include "core/SettingsStore.hpp"
#include "support/MemoryDefaults.hpp"
#include "support/VirtualMachine.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace sentrel {
namespace {

constexpr const char* key = "alarmSettings";

struct StoringMac : test::VirtualMachine {
    test::MemoryDefaults defaults;

    [[nodiscard]] AlarmSettings stored() { return SettingsStore{mainActor, defaults}.settings(); }
};

TEST(SettingsStore, LoadsWhatIsReadableAndWritesNothingByItself)
{
    StoringMac mac;
    EXPECT_EQ(mac.stored(), AlarmSettings{});
    EXPECT_EQ(mac.defaults.data(key), std::nullopt);
    const auto damaged = bytesOf("no JSON");
    mac.defaults.setData(key, damaged);
    EXPECT_EQ(mac.stored(), AlarmSettings{});
    EXPECT_EQ(mac.defaults.data(key), damaged);
    mac.defaults.setData(key, bytesOf(R"({"alarmVolume":0.5})"));
    EXPECT_EQ(mac.stored(), AlarmSettings{.alarmVolume = 0.5});
}

TEST(SettingsStore, SavesAnEqualValueTooAndTellsOnlyOfAChange)
{
    StoringMac mac;
    const auto damaged = bytesOf("no JSON");
    mac.defaults.setData(key, damaged);
    SettingsStore store{mac.mainActor, mac.defaults};
    int told = 0;
    const auto observation = store.observe([&told](const AlarmSettings&) { ++told; });
    store.setSettings(store.settings());
    EXPECT_NE(mac.defaults.data(key), damaged);
    EXPECT_EQ(told, 0);
    store.set(&AlarmSettings::alarmVolume, 0.5);
    EXPECT_EQ(told, 1);

    store.set(&AlarmSettings::alarmVolume, std::numeric_limits<double>::infinity());
    EXPECT_EQ(mac.stored().alarmVolume, 0.5) << "a value without an encoding leaves the entry as it was";
}

} // namespace
} // namespace sentrel
