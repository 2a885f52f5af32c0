#pragma once

#include "ports/Platform.hpp"
#include "runtime/Async.hpp"
#include "runtime/Time.hpp"
#include "selftest/SelfTest.hpp"

#include <chrono>

namespace sentrel::selftest {

/// The means of a step; they outlive it.
struct Bench {
    ports::Platform& platform;
    const std::vector<std::string>& differingTexts;
};

/// A step's result.
struct Outcome {
    Outcome(Verdict itsVerdict, std::string itsFact) : verdict(itsVerdict), fact(std::move(itsFact)) {}
    Verdict verdict;
    std::string fact;
};

/// One step. Exceptions and answers that don't come within the limit are failures.
struct Step {
    enum class Place { mainThread, anyThread };
    const char* title;
    Place place;
    Duration limit;
    const char* meaning;  ///< of a failure, for the user
    const char* question; ///< with the verdict `ask`
    Async<Outcome> (*run)(const Bench& bench);
};

Async<Outcome> checkComputer(const Bench& bench);
Async<Outcome> checkSystemTexts(const Bench& bench);
Async<Outcome> checkPower(const Bench& bench);
Async<Outcome> checkLid(const Bench& bench);
Async<Outcome> checkMotion(const Bench& bench);
Async<Outcome> checkAudioDevices(const Bench& bench);
Async<Outcome> checkTone(const Bench& bench);
Async<Outcome> checkMusic(const Bench& bench);
Async<Outcome> checkPhoto(const Bench& bench);
Async<Outcome> checkScreens(const Bench& bench);
Async<Outcome> checkKeychain(const Bench& bench);
Async<Outcome> checkLogin(const Bench& bench);
Async<Outcome> checkLoginItem(const Bench& bench);
Async<Outcome> checkNetwork(const Bench& bench);
Async<Outcome> checkCloudAccount(const Bench& bench);
Async<Outcome> checkCloudRecord(const Bench& bench);

} // namespace sentrel::selftest
