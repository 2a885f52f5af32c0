#include "simulation/story/ProgressLine.hpp"

#include "simulation/stage/Wording.hpp"
#include "simulation/story/StoryPage.hpp"
#include "simulation/story/StoryText.hpp"

#include <algorithm>
#include <cstdlib>
#include <ostream>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::chrono::seconds patience{2};
constexpr std::chrono::milliseconds pause{200};

} // namespace

ProgressLine::ProgressLine(std::ostream& terminal, double seconds, bool isShared, Clock clock)
    : terminal_(terminal), seconds_(seconds), isShared_(isShared), clock_(std::move(clock)), next_(clock_() + patience)
{
}

ProgressLine::~ProgressLine()
{
    erase();
}

bool ProgressLine::isWatched()
{
    const char* const terminal = std::getenv("TERM");
    return isatty(STDERR_FILENO) != 0 && terminal != nullptr && std::string_view{terminal} != "dumb";
}

void ProgressLine::reached(double at)
{
    const auto now = clock_();
    if (now < next_) {
        return;
    }
    next_ = now + pause;
    isShown_ = true;
    // In one piece, because standard error writes each piece at once, and half a line flickers.
    const std::string share = percent(seconds_ > 0.0 ? std::min(at / seconds_, 1.0) : 1.0);
    terminal_ << "\r  Playing: " + clockText(at) + " of " + clockText(seconds_) + ", " + share + "\x1b[K" << std::flush;
}

void ProgressLine::happened(const Event& /*event*/)
{
    makeRoom();
}

void ProgressLine::willPerform(double /*at*/, const Step& /*step*/, const Action& /*action*/)
{
    makeRoom();
}

void ProgressLine::checked(double /*at*/, const Step& /*step*/, const std::vector<Mismatch>& /*mismatches*/)
{
    makeRoom();
}

void ProgressLine::ends(MacSession& /*session*/, const std::filesystem::path& /*sound*/)
{
    erase();
}

void ProgressLine::makeRoom()
{
    if (isShared_) {
        erase();
    }
}

void ProgressLine::erase()
{
    if (isShown_) {
        terminal_ << "\r\x1b[K" << std::flush;
        isShown_ = false;
    }
}

} // namespace sentrel::simulation
