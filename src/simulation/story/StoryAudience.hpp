#pragma once

#include "simulation/stage/Player.hpp"
#include "simulation/story/Story.hpp"

#include <algorithm>
#include <vector>

namespace sentrel::simulation {

/// Has a story told of a play.
class StoryAudience final : public Audience {
public:
    StoryAudience(Story& story, const Scenario& scenario) : story_(story), scenario_(scenario) {}

    void begins(MacSession& /*session*/) override { story_.open(scenario_); }

    void happened(const Event& event) override { story_.tell(event); }

    void willPerform(double at, const Step& step, const Action& action) override
    {
        remark(at, step);
        story_.perform(at, action);
    }

    void checked(double at, const Step& step, const std::vector<Mismatch>& mismatches) override
    {
        remark(at, step);
        if (!mismatches.empty()) {
            story_.differ(at, mismatches);
        }
    }

private:
    void remark(double at, const Step& step)
    {
        if (!step.note.empty()) {
            story_.remark(at, step.note);
        }
    }

    Story& story_;
    const Scenario& scenario_;
};

/// Passes a play on to several audiences, in their order; they must outlive it.
class Audiences final : public Audience {
public:
    void add(Audience& audience) { all_.push_back(&audience); }

    void begins(MacSession& session) override { each(&Audience::begins, session); }
    void reached(double at) override { each(&Audience::reached, at); }
    void leaves(MacSession& session) override { each(&Audience::leaves, session); }
    [[nodiscard]] bool wantsEachInstant() const override
    {
        return std::ranges::any_of(all_, &Audience::wantsEachInstant);
    }
    void settled(MacSession& session) override { each(&Audience::settled, session); }
    void died(double at, const Raised& raised) override { each(&Audience::died, at, raised); }
    void happened(const Event& event) override { each(&Audience::happened, event); }
    void willPerform(double at, const Step& step, const Action& action) override
    {
        each(&Audience::willPerform, at, step, action);
    }
    void checked(double at, const Step& step, const std::vector<Mismatch>& mismatches) override
    {
        each(&Audience::checked, at, step, mismatches);
    }
    void ends(MacSession& session, const std::filesystem::path& sound) override
    {
        each(&Audience::ends, session, sound);
    }

private:
    template <class Method, class... Arguments> void each(Method method, Arguments&... arguments)
    {
        for (Audience* const audience : all_) {
            (audience->*method)(arguments...);
        }
    }

    std::vector<Audience*> all_;
};

} // namespace sentrel::simulation
