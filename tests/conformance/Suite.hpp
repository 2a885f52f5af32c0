#pragma once

#include "foundation/Bytes.hpp"
#include "ports/CloudDatabase.hpp"
#include "ports/Platform.hpp"
#include "runtime/MainActor.hpp"
#include "ui/View.hpp"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Promises of the ports, checked in the same words on every platform. A suite needs no permission and no hardware.

namespace sentrel::conformance {

/// The checks that were made, and those that failed.
class Report {
public:
    /// Counts a check; a failed one is kept with its promise and the observed fact.
    bool expect(bool holds, std::string promise, std::string observed = {})
    {
        ++checks_;
        if (!holds) {
            failures_.push_back(std::move(promise) + (observed.empty() ? "" : ": " + observed));
        }
        return holds;
    }

    /// Expects that the call throws `CloudError` with this code.
    void expectCloudError(int code, const std::string& promise, const std::function<void()>& call);

    [[nodiscard]] int checks() const { return checks_; }
    [[nodiscard]] const std::vector<std::string>& failures() const { return failures_; }

private:
    int checks_ = 0;
    std::vector<std::string> failures_;
};

/// A view as the platform has drawn it.
struct Drawn {
    std::string identity;           ///< as in `ui::Node`
    std::vector<std::string> texts; ///< readable in it, the views inside included
    std::string label;              ///< for screen readers
    bool isEnabled = true;
    bool hasFocus = false;
};

/// The platform's ways to draw a tree off screen.
struct Renderer {
    /// Draws the tree; gives every view that is drawn, and complaints about the layout. The name is that of a picture
    /// to keep, where the platform keeps pictures.
    std::function<std::vector<Drawn>(const ui::View& tree, const std::string& name, Report& report)> draw;
    bool tellsFocus = false;
};

/// The platform's records without a container.
struct Records {
    /// The record as the platform's own object, and back. Throws `CloudError`.
    std::function<ports::CloudRecord(const ports::CloudRecord&)> roundTrip;
    /// Makes the platform's own query. Throws `CloudError`.
    std::function<void(const ports::CloudQuery&)> makeQuery;
};

/// Lets the main thread run for this time.
using Passing = std::function<void(Duration)>;

/// Lets time pass until the condition holds; false when it doesn't within the limit.
bool waitFor(const Passing& pass, const std::function<bool()>& condition, Duration limit);

/// The platform under test.
struct Subject {
    ports::Platform& platform;
    Passing pass;
    std::filesystem::path folder; ///< empty, for files
    Renderer renderer;
    Records records;
    /// The user's language by its identifier ("de").
    std::function<std::unique_ptr<ports::Language>(const std::string& identifier)> language;
};

struct Suite {
    const char* name;
    void (*run)(const Subject& subject, Report& report);
};

/// All suites, in the order in which they run.
[[nodiscard]] const std::vector<Suite>& suites();

/// Also for a scheduler without a platform.
void checkScheduler(Scheduler& scheduler, const Passing& pass, Report& report);
void checkDefaults(const Subject& subject, Report& report);
void checkFiles(const Subject& subject, Report& report);
void checkCryptography(const Subject& subject, Report& report);
void checkRandom(const Subject& subject, Report& report);
void checkImageCodec(const Subject& subject, Report& report);
void checkCalendar(const Subject& subject, Report& report);
void checkLanguage(const Subject& subject, Report& report);
void checkLog(const Subject& subject, Report& report);
void checkHost(const Subject& subject, Report& report);
void checkNetworkPath(const Subject& subject, Report& report);
void checkRecords(const Subject& subject, Report& report);
void checkWindows(const Subject& subject, Report& report);

} // namespace sentrel::conformance
