#pragma once

#include "ports/Platform.hpp"
#include "runtime/MainActor.hpp"

#include <functional>
#include <string>
#include <vector>

namespace sentrel::selftest {

/// The result of one step.
enum class Verdict {
    pass,
    fail,
    ask, ///< only a person can tell; the finding's advice is the question
};

struct Finding {
    Verdict verdict = Verdict::pass;
    std::string title;
    std::string fact;   ///< one line
    std::string advice; ///< of a failure its meaning, of a question the question; empty otherwise
};

/// Tries the parts of a Mac that Sentrel uses, for a person who sits before it: about two minutes, of which most pass
/// only when something hangs. Writes one item to the keychain and one record to iCloud, and removes both; plays a quiet
/// tone of a second; takes a photo and forgets it. Main actor.
class SelfTest {
public:
    /// `differingTexts`: the texts of frameworks that are not as the product has them, see the adapters. The platform
    /// outlives the test.
    SelfTest(ports::Platform& platform, std::vector<std::string> differingTexts)
        : platform_(platform), differingTexts_(std::move(differingTexts))
    {
    }
    SelfTest(const SelfTest&) = delete;

    /// Runs all steps, one after another; calls `found` after each.
    [[nodiscard]] Async<std::vector<Finding>> run(std::function<void(const Finding&)> found);

private:
    ports::Platform& platform_;
    const std::vector<std::string> differingTexts_;
};

[[nodiscard]] bool hasFailed(const std::vector<Finding>& findings);

/// The lines of one finding.
[[nodiscard]] std::string textOf(const Finding& finding);

/// The lines above and below the findings.
[[nodiscard]] std::string heading();
[[nodiscard]] std::string summary(const std::vector<Finding>& findings);

} // namespace sentrel::selftest
