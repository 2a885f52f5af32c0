#include "Doubles.hpp"
#include "JsonMutator.hpp"
#include "Require.hpp"
#include "simulation/icloud/SimulatedICloud.hpp"
#include "simulation/icloud/SubscriptionCoding.hpp"
#include "simulation/mac/SimulatedWallClock.hpp"
#include "simulation/mac/files/Base64.hpp"
#include "simulation/mac/motion/MotionRecording.hpp"
#include "simulation/mac/security/KeychainContents.hpp"

#include "runtime/VirtualScheduler.hpp"

#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>

// The inputs that the simulated Mac reads from its disk, its server and a scenario's author. An input is a line with a
// decoder's name, then the decoder's content.

namespace sentrel::fuzz {
namespace {

using namespace simulation;

std::filesystem::path makeFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "sentrel-fuzz-XXXXXX").string();
    require(mkdtemp(name.data()) != nullptr, "no temporary folder");
    return name;
}

/// The push service of a Mac, with the server that it needs.
struct PushService {
    VirtualClock clock;
    VirtualScheduler process{clock};
    VirtualScheduler hardware{clock};
    SilentJournal journal;
    SimulatedWallClock wallClock{hardware, Date{8e8}};
    std::filesystem::path folder = makeFolder();
    PrivateCloud server{folder / "server", wallClock, journal};
    SimulatedICloud icloud{{process, hardware, journal, server, "MacBook", folder / "assets"}};

    ~PushService()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
};

void readKeychain(std::string_view text)
{
    const auto contents = KeychainContents::decode(bytesOf(text));
    if (!contents) {
        return;
    }
    const auto again = KeychainContents::decode(bytesOf(contents->encode()));
    for (const auto store : {KeychainStore::dataProtection, KeychainStore::legacy}) {
        require(again && again->items(store) == contents->items(store), "a keychain changes when it is written");
    }
}

void readSubscription(std::string_view text)
{
    if (const auto subscription = decodeSubscription(bytesOf(text))) {
        const std::string written = encodeSubscription(*subscription);
        const auto again = decodeSubscription(bytesOf(written));
        require(again && encodeSubscription(*again) == written, "a subscription changes when it is written");
    }
}

void readPush(std::string_view text)
{
    static PushService service;
    const auto push = parseJson(bytesOf(text));
    const auto notification = push ? service.icloud.notifications.cloudNotification(*push) : std::nullopt;
    require(!notification || push->contains("ck"), "a push of somebody else is taken for iCloud's");
}

void readMotion(std::string_view text)
{
    try {
        Duration last{};
        for (const auto& sample : MotionRecording::parse(text, "motion.csv").samples()) {
            const auto& [x, y, z] = sample.acceleration;
            require(std::isfinite(x) && std::isfinite(y) && std::isfinite(z), "a sample is no number");
            require(sample.at >= last, "samples are not in order");
            last = sample.at;
        }
    } catch (const MotionRecordingError&) {
    }
}

void readBase64(std::string_view text)
{
    const auto bytes = bytesOfBase64(text);
    require(!bytes || base64Text(*bytes) == text, "bytes change when they are written");
}

void check(std::string_view input)
{
    const std::string_view name = input.substr(0, input.find('\n'));
    const std::string_view content = input.substr(std::min(name.size() + 1, input.size()));
    if (name == "keychain") {
        readKeychain(content);
    } else if (name == "subscription") {
        readSubscription(content);
    } else if (name == "push") {
        readPush(content);
    } else if (name == "motion") {
        readMotion(content);
    } else if (name == "base64") {
        readBase64(content);
    }
}

} // namespace
} // namespace sentrel::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    sentrel::fuzz::check({reinterpret_cast<const char*>(data), size});
    return 0;
}
