#pragma once

#include "runtime/MainActor.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/icloud/CloudErrorNames.hpp"
#include "simulation/icloud/SimulatedICloud.hpp"
#include "simulation/mac/SimulatedWallClock.hpp"
#include "support/TemporaryFolder.hpp"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace sentrel::simulation {

/// The outcome of a request: nothing yet, its answer, or its error.
template <class T> using Outcome = std::variant<std::monostate, T, ports::CloudError>;

/// A server and one Mac of the account "owner", in virtual time; further devices are made by the tests.
class CloudScene {
public:
    CloudScene()
    {
        log.observe([this](const Event& event) { story += event.name + " "; });
    }

    /// Starts the request; its outcome is there when it has been answered.
    template <class T> std::shared_ptr<Outcome<T>> start(Async<T> request)
    {
        auto outcome = std::make_shared<Outcome<T>>();
        MainActor{process}.spawn(keep(outcome, std::move(request)));
        return outcome;
    }

    /// The outcome of the request after all the time that it takes.
    template <class T> Outcome<T> outcome(Async<T> request)
    {
        const auto kept = start(std::move(request));
        clock.runUntilIdle();
        return *kept;
    }

    /// The answer of a request that must go well; throws its error.
    template <class T> T answer(Async<T> request)
    {
        Outcome<T> came = outcome(std::move(request));
        if (const auto* const error = std::get_if<ports::CloudError>(&came)) {
            throw ports::CloudError{*error};
        }
        return std::get<T>(std::move(came));
    }

    /// The code of the request's error; 0 when it went well.
    template <class T> int code(Async<T> request) { return codeOf(outcome(std::move(request))); }

    /// A request without an answer of its own, as one whose answer is true.
    static Async<bool> done(Async<void> request)
    {
        co_await std::move(request);
        co_return true;
    }

    template <class Result> static int codeOf(const Result& result)
    {
        const auto* const error = std::get_if<ports::CloudError>(&result);
        return error == nullptr ? 0 : error->code;
    }

    [[nodiscard]] static ports::CloudRecord thing(const std::string& name,
                                                  std::map<std::string, ports::CloudValue> fields = {})
    {
        return {"Thing", name, std::move(fields), {}, std::nullopt};
    }

    [[nodiscard]] SimulatedICloud::Surroundings surroundings(const std::string& device)
    {
        return {process, hardware, log, server, device, disk.path() / device, 1};
    }

    TemporaryFolder disk;
    VirtualClock clock;
    VirtualScheduler process{clock};
    VirtualScheduler hardware{clock};
    EventLog log{hardware};
    std::string story; ///< the names of all events
    SimulatedWallClock wallClock{hardware, Date{1000.0}};
    PrivateCloud server{disk.path() / "iCloud", wallClock, log};
    SimulatedICloud mac{surroundings("mac")};

private:
    template <class T> static Async<void> keep(std::shared_ptr<Outcome<T>> into, Async<T> request)
    {
        try {
            T value = co_await std::move(request);
            into->template emplace<T>(std::move(value));
        } catch (const ports::CloudError& error) {
            into->template emplace<ports::CloudError>(error);
        }
    }
};

} // namespace sentrel::simulation
