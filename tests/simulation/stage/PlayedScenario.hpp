#pragma once

#include "simulation/stage/Player.hpp"
#include "simulation/stage/ScenarioReader.hpp"
#include "simulation/story/Story.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace sentrel::simulation {

/// Plays scenarios, and keeps what is heard of them.
class PlayedScenario : public testing::Test, protected Audience {
protected:
    /// The expectations that didn't hold, as sentences.
    std::vector<std::string> played(const Scenario& scenario)
    {
        const PlayOptions options{.out = out, .resources = SENTREL_SOURCE_DIR "/resources", .seed = 1};
        std::vector<std::string> sentences;
        for (const Mismatch& mismatch : play(scenario, options, *this).mismatches) {
            sentences.push_back(sentence(mismatch));
        }
        return sentences;
    }

    /// The text of a scenario in the folder.
    std::vector<std::string> playedText(const std::string& text)
    {
        return played(parseScenario(text, folder.path() / "talk.yaml"));
    }

    /// The events of these names, each with one of its fields.
    [[nodiscard]] std::vector<std::string> heard(const std::vector<std::pair<std::string, std::string>>& wanted) const
    {
        std::vector<std::string> found;
        for (const Event& event : events) {
            for (const auto& [name, field] : wanted) {
                if (event.name == name) {
                    found.push_back(name + " " + std::string{event.text(field)});
                }
            }
        }
        return found;
    }

    TemporaryFolder folder;
    std::optional<std::filesystem::path> out;
    std::vector<Event> events;
    std::ostringstream told; ///< the story

private:
    void happened(const Event& event) override
    {
        events.push_back(event);
        story_.tell(event);
    }
    void willPerform(double at, const Step&, const Action& action) override { story_.perform(at, action); }
    void checked(double, const Step&, const std::vector<Mismatch>&) override {}

    Story story_{told, {.isColoured = false, .width = 200}};
};

} // namespace sentrel::simulation
