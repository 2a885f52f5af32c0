#include "simulation/story/CloudText.hpp"

#include "simulation/story/StoryText.hpp"

#include <array>
#include <charconv>
#include <string_view>

namespace sentrel::simulation {

namespace {

using ports::CloudAccountStatus;

std::string number(double value)
{
    std::array<char, 32> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc{} ? std::string{text.data(), end} : std::string{"?"};
}

std::string_view statusText(CloudAccountStatus status)
{
    switch (status) {
    case CloudAccountStatus::available:
        return "The iCloud account can be used.";
    case CloudAccountStatus::restricted:
        return "iCloud is restricted on this Mac.";
    case CloudAccountStatus::noAccount:
        return "The Mac is signed out of iCloud.";
    case CloudAccountStatus::temporarilyUnavailable:
        return "The iCloud account can't be used for the moment.";
    case CloudAccountStatus::couldNotDetermine:
        break;
    }
    return "macOS can't tell which iCloud account there is.";
}

/// "The next 3 requests"
std::string requestsText(const CloudFault& fault)
{
    const std::string kind = fault.operation ? "“" + std::string{nameOf(*fault.operation)} + "” request" : "request";
    if (fault.probability < 1.0) {
        return percent(fault.probability) + " of the " + kind + "s";
    }
    if (fault.times < 0) {
        return "Every " + kind;
    }
    return fault.times == 1 ? "The next " + kind : "The next " + std::to_string(fault.times) + " " + kind + "s";
}

std::string faultText(const CloudFault& fault)
{
    const auto& retryAfter = fault.error.retryAfter;
    return requestsText(fault) + " to iCloud will fail with “" + fault.error.description + "”" +
           (retryAfter ? ", which asks to wait " + number(*retryAfter) + " s." : ".");
}

std::string quotaText(const std::optional<std::uint64_t>& quota)
{
    return !quota        ? "There is room in iCloud again."
           : *quota == 0 ? "The iCloud storage is full."
                         : "iCloud has room for " + std::to_string(*quota) + " bytes.";
}

std::string answersText(int count)
{
    return count == 1 ? "iCloud's next answer will get lost on its way."
                      : "iCloud's next " + std::to_string(count) + " answers will get lost on their way.";
}

void add(std::string& text, std::string_view sentence)
{
    text += text.empty() ? "" : " ";
    text += sentence;
}

} // namespace

std::string accountText(const CloudChange& cloud)
{
    std::string text;
    if (cloud.user && cloud.account.value_or(CloudAccountStatus::available) == CloudAccountStatus::available) {
        text = " It is signed in to iCloud as " + *cloud.user + ".";
    } else if (cloud.account == CloudAccountStatus::available) {
        text = " It is signed in to iCloud.";
    } else if (cloud.account && cloud.account != CloudAccountStatus::noAccount) {
        text = " " + std::string{statusText(*cloud.account)};
    }
    if (cloud.isNetworkUp == false) {
        text += " It has no network.";
    }
    if (cloud.quota && *cloud.quota) {
        text += " " + quotaText(*cloud.quota);
    }
    return text;
}

std::string describe(const ChangeCloud& action)
{
    const CloudChange& change = action.change;
    std::string text;
    if (change.isNetworkUp) {
        add(text, *change.isNetworkUp ? "The network is back." : "The network is gone.");
    }
    if (change.user) {
        add(text, "The Mac is now signed in to iCloud as " + *change.user + ".");
    }
    if (change.account) {
        add(text, statusText(*change.account));
    }
    if (change.quota) {
        add(text, quotaText(*change.quota));
    }
    if (change.fault) {
        add(text, *change.fault ? faultText(**change.fault) : "iCloud fails no longer.");
    }
    if (change.latency) {
        add(text, "iCloud now takes " + number(toSeconds(*change.latency)) + " s to answer.");
    }
    if (change.lostAnswers) {
        add(text, answersText(change.lostAnswers->times));
    }
    return text;
}

std::string describe(const UsePhone& action)
{
    std::string text =
        action.command.arm ? "The owner's phone tells the Mac to arm" : "The owner's phone tells the Mac to disarm";
    if (action.command.issuedAgo > 0.0) {
        text += ", in a command that is " + number(action.command.issuedAgo) + " s old";
    }
    return text + ".";
}

std::string describe(const DeleteAlerts& action)
{
    switch (action.which) {
    case DeleteAlerts::Which::all:
        return "The owner deletes all alerts.";
    case DeleteAlerts::Which::oldest:
        return "The owner deletes the oldest alert.";
    case DeleteAlerts::Which::newest:
        break;
    }
    return "The owner deletes the newest alert.";
}

} // namespace sentrel::simulation
