#include "JsonMutator.hpp"
#include "foundation/Fatal.hpp"
#include "simulation/page/LiveMac.hpp"
#include "simulation/page/PageRequests.hpp"
#include "simulation/stage/ScenarioReader.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

// Requests of a page: lines that are in turn the name of a request and its body. One Mac lives through all of
// them, so that they also meet the states that others have left behind.

namespace sentrel::simulation {
namespace {

constexpr std::size_t mostRequests = 8;

std::filesystem::path makeFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "sentrel-fuzz-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        fatalError("no temporary folder");
    }
    return name;
}

/// A Mac in the state before anybody did anything.
class FuzzedMac {
public:
    FuzzedMac() : folder_(makeFolder()), mac(makeScenario(), folder_, "resources", 1, MacSession::storyDate)
    {
        mac.start();
        page_ = mac.listen();
    }
    ~FuzzedMac()
    {
        mac.stop();
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    FuzzedMac(const FuzzedMac&) = delete;

    /// Reads what the page is told: each event is a whole one, and none is too much for it.
    void read()
    {
        for (auto event = page_->next(); event == nullptr || !event->empty(); event = page_->next()) {
            if (event == nullptr) {
                fatalError("a page is cut off that reads");
            }
            if (!event->starts_with("id: ") || event->find("\n\n") != event->size() - 2) {
                fatalError("an event that is none");
            }
        }
    }

private:
    static Scenario makeScenario()
    {
        return parseScenario("title: Fuzz\nmac: {icloud: maya}\nsettings: {requirePasswordForActions: false}\n"
                             "steps:\n- {at: 1s, do: arm}\n",
                             "fuzz.yaml");
    }

    std::filesystem::path folder_;

public:
    LiveMac mac;

private:
    std::shared_ptr<EventHub::Subscriber> page_;
};

void check(const PageAnswer& answer)
{
    const bool isDone = answer.status == 204 && answer.error.empty();
    const bool isRefused =
        (answer.status == 400 || answer.status == 404 || answer.status == 409) && !answer.error.empty();
    if (!isDone && !isRefused) {
        fatalError("an answer that is none");
    }
    // No request of a page gets at a file of this machine, so that no answer speaks of one.
    if (answer.error.find(std::filesystem::temp_directory_path().string() + "/sentrel-fuzz") != std::string::npos) {
        fatalError("an answer names a file");
    }
}

std::string nextLine(std::string_view& rest)
{
    const auto end = std::min(rest.find('\n'), rest.size());
    std::string line{rest.substr(0, end)};
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return line;
}

} // namespace
} // namespace sentrel::simulation

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace sentrel::simulation;
    static FuzzedMac fuzzed;
    std::string_view rest{reinterpret_cast<const char*>(data), size};
    for (std::size_t count = 0; count < mostRequests && !rest.empty(); ++count) {
        const std::string name = nextLine(rest);
        const std::string body = nextLine(rest);
        check(name == "webcam" ? showWebcam(fuzzed.mac, body) : answerPage(fuzzed.mac, name, body));
        fuzzed.read();
    }
    return 0;
}
