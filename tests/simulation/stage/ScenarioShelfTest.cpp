#include "simulation/stage/ScenarioShelf.hpp"
#include "simulation/stage/ExitStatus.hpp"
#include "simulation/stage/ScenarioError.hpp"
#include "support/Files.hpp"
#include "support/TemporaryFolder.hpp"

#include <gmock/gmock.h>

#include <sstream>

namespace sentrel::simulation {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST(ScenarioShelf, FindsScenariosByNameOrPathAndReadsThemWithoutPlaying)
{
    const TemporaryFolder folder;
    test::put(folder.path() / "theft.yaml", "title: A theft\nsteps: [{at: 1s, do: arm}]\n");
    test::put(folder.path() / "slip.yaml", "title: A slip\nsteps: [{at: 1s, do: armm}]\n");
    test::put(folder.path() / "notes.txt", "no scenario");
    const ScenarioShelf shelf{folder.path()};

    EXPECT_THAT(shelf.names(), testing::ElementsAre("slip", "theft"));
    EXPECT_EQ(shelf.find("theft"), folder.path() / "theft.yaml");
    EXPECT_EQ(shelf.find("elsewhere/theft.yaml"), "elsewhere/theft.yaml") << "a path stays as it is";
    try {
        static_cast<void>(shelf.find("thefd"));
        FAIL() << "found";
    } catch (const ScenarioError& error) {
        EXPECT_THAT(error.what(), HasSubstr("did you mean 'theft'?"));
    }

    std::ostringstream list;
    EXPECT_EQ(listScenarios(shelf, list), exitAllHeld);
    EXPECT_THAT(list.str(), StartsWith("slip   can't be read: "));
    EXPECT_THAT(list.str(), HasSubstr("\ntheft  A theft\n"));

    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(checkScenarios(shelf, {"theft", "slip"}, out, err), exitUnreadable);
    EXPECT_EQ(out.str(), "");
    EXPECT_THAT(err.str(), HasSubstr("slip.yaml:2: unknown action 'armm'; did you mean 'arm'?"));
    EXPECT_EQ(checkScenarios(shelf, {"theft"}, out, err), exitAllHeld);
    EXPECT_EQ(out.str(), "1 scenario can be played.\n");
}

} // namespace
} // namespace sentrel::simulation
