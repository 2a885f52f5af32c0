#include "selftest/SelfTest.hpp"
#include "app/SentrelApp.hpp"
#include "mac/MacPlatform.hpp"
#include "mac/foundation/SdkConstants.hpp"

#include <cstdio>
#include <cstdlib>

// Tries the parts of this Mac that Sentrel uses and prints one page for a bug report. The exit status is 1 when a step
// fails.

namespace {

using namespace sentrel;

void print(const std::string& text)
{
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout);
}

Async<void> runAndEnd(selftest::SelfTest& test)
{
    print(selftest::heading());
    const auto findings = co_await test.run([](const selftest::Finding& finding) { print(textOf(finding)); });
    print(selftest::summary(findings));
    // A step that hangs keeps its thread, which nobody can wait for.
    std::_Exit(selftest::hasFailed(findings) ? EXIT_FAILURE : EXIT_SUCCESS);
}

} // namespace

int main()
{
    @autoreleasepool {
        mac::MacPlatform mac{CloudKitService::containerIdentifier};
        selftest::SelfTest test{mac.ports(), mac::differingSdkTexts()};
        MainActor{mac.ports().scheduler}.spawn(runAndEnd(test));
        mac::runApplication();
    }
    return 0;
}
