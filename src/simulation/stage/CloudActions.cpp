#include "simulation/stage/Action.hpp"
#include "simulation/stage/CloudText.hpp"
#include "simulation/stage/MacReader.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacWords.hpp"
#include "simulation/stage/Wording.hpp"

#include <array>
#include <unordered_set>

// Actions on the iCloud account, the network, the phone and the list of alerts.

namespace sentrel::simulation {

namespace {

using ports::CloudAccountStatus;
using Command = CompanionPhone::Command;

constexpr std::array<Word<CloudAccountStatus>, 5> statusTexts{{
    {"The iCloud account can be used.", CloudAccountStatus::available},
    {"iCloud is restricted on this Mac.", CloudAccountStatus::restricted},
    {"The Mac is signed out of iCloud.", CloudAccountStatus::noAccount},
    {"The iCloud account can't be used for the moment.", CloudAccountStatus::temporarilyUnavailable},
    {"macOS can't tell which iCloud account there is.", CloudAccountStatus::couldNotDetermine},
}};

/// "The next 3 requests"
std::string requestsText(const CloudFault& fault)
{
    const std::string kind = fault.operation ? quotation(nameOf(*fault.operation)) + " request" : "request";
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
    return requestsText(fault) + " to iCloud will fail with " + quotation(fault.error.description) +
           (retryAfter ? ", which asks to wait " + plainNumber(*retryAfter) + " s." : ".");
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

std::string tellCloud(const CloudChange& change)
{
    std::string text;
    const auto add = [&text](std::string_view sentence) {
        text += text.empty() ? "" : " ";
        text += sentence;
    };
    if (change.isNetworkUp) {
        add(*change.isNetworkUp ? "The network is back." : "The network is gone.");
    }
    if (change.user) {
        add("The Mac is now signed in to iCloud as " + *change.user + ".");
    }
    if (change.account) {
        add(wordFor(statusTexts, *change.account));
    }
    if (change.quota) {
        add(quotaText(*change.quota));
    }
    if (change.fault) {
        add(*change.fault ? faultText(**change.fault) : "iCloud fails no longer.");
    }
    if (change.latency) {
        add("iCloud now takes " + plainNumber(toSeconds(*change.latency)) + " s to answer.");
    }
    if (change.lostAnswers) {
        add(answersText(change.lostAnswers->times));
    }
    return text;
}

ValueType<std::int64_t> sequenceType()
{
    return {[](auto& value, auto what, auto&) {
                constexpr double most = 9'007'199'254'740'992.0; // 2^53: doubles hold all integers up to here
                const double number = readNumber(value, what, -most, most);
                const auto sequence = static_cast<std::int64_t>(number);
                if (static_cast<double>(sequence) != number) {
                    throw SourceFault(value.line, "'sequence' must be a whole number, not " + inQuotes(value.text));
                }
                return sequence;
            },
            {{"type", "integer"}}};
}

ValueType<Command> commandType()
{
    static constexpr std::array<Word<bool>, 2> words{{{"arm", true}, {"disarm", false}}};
    Fields<Command> fields{
        required(field("arm", &Command::arm, type::flag())),
        field("sequence", &Command::sequence, sequenceType()),
        field("issuedAgo", &Command::issuedAgo, type::made(type::span(), [](Duration ago) { return toSeconds(ago); })),
    };
    auto word = type::made(type::word("command of the phone", words), [](bool arm) { return Command{.arm = arm}; });
    return type::either(type::map(std::move(fields)), std::move(word));
}

std::string tellCommand(const Command& command)
{
    return std::string{"The owner's phone tells the Mac to "} + (command.arm ? "arm" : "disarm") +
           (command.issuedAgo > 0.0 ? ", in a command that is " + plainNumber(command.issuedAgo) + " s old." : ".");
}

/// Deletes all rows of the list, or the first or last one: the list is sorted newest first.
void deleteAlerts(MacSession& session, const std::string& which)
{
    session.onMain([which](SentrelApp& app) {
        const std::vector<AlertRow>& rows = *app.alertsService().alerts.get();
        std::unordered_set<UUID> ids;
        for (const AlertRow& row : rows) {
            const bool isChosen = which == "all" || &row == (which == "newest" ? &rows.front() : &rows.back());
            if (isChosen) {
                ids.insert(row.alert.id);
            }
        }
        app.alertsService().deleteAlerts(ids);
    });
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
        text = " " + std::string{wordFor(statusTexts, *cloud.account)};
    }
    text += cloud.isNetworkUp == false ? " It has no network." : "";
    return cloud.quota && *cloud.quota ? text + " " + quotaText(*cloud.quota) : text;
}

std::vector<ActionRow> cloudActions()
{
    const auto change = [](MacSession& session, const CloudChange& cloud) { apply(cloud, session.mac().iCloud); };
    const auto networkOnly = [](bool isUp) { return CloudChange{.isNetworkUp = isUp}; };
    return {
        ActionRow::with("network", "{network: down}", "the network",
                        type::made(type::word("network", networkWords), networkOnly), change, tellCloud),
        ActionRow::with("icloud", "{icloud: {quota: full}}", "the iCloud account and the cloud", cloudType(), change,
                        tellCloud),
        ActionRow::with(
            "phone", "{phone: {arm: true}}", "the owner's phone sends this Mac a command", commandType(),
            [](MacSession& session, const Command& command) { session.commandByPhone(command); }, tellCommand),
        ActionRow::with("delete-alerts", "{delete-alerts: all}", "the owner deletes alerts from the list",
                        type::oneOf("choice of alerts", {"all", "oldest", "newest"}), deleteAlerts,
                        [](const std::string& which) {
                            return which == "all" ? "The owner deletes all alerts."
                                                  : "The owner deletes the " + which + " alert.";
                        }),
        ActionRow::plain(
            "refresh", "the owner refreshes the list of alerts",
            [](MacSession& session) { session.onMain([](SentrelApp& app) { app.alertsService().startRefresh(); }); },
            "The owner refreshes the list of alerts."),
    };
}

} // namespace sentrel::simulation
