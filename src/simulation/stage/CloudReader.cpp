#include "simulation/stage/CloudReader.hpp"

#include "simulation/icloud/CloudErrorNames.hpp"

#include <algorithm>
#include <utility>

namespace sentrel::simulation {

namespace {

using ports::CloudAccountStatus;

constexpr std::array<Word<CloudAccountStatus>, 5> statuses{{
    {"none", CloudAccountStatus::noAccount},
    {"available", CloudAccountStatus::available},
    {"restricted", CloudAccountStatus::restricted},
    {"temporarily-unavailable", CloudAccountStatus::temporarilyUnavailable},
    {"unknown", CloudAccountStatus::couldNotDetermine},
}};

void readAccount(ChangeCloud& action, const YamlValue& value, const ReadContext&)
{
    const std::string text = isNone(value) ? "none" : readText(value, "'account'");
    std::vector<std::string_view> words;
    for (const auto& status : statuses) {
        if (status.text == text) {
            action.change.account = status.meaning;
            return;
        }
        words.push_back(status.text);
    }
    const bool isSlip = value.kind == YamlValue::Kind::plain &&
                        std::ranges::any_of(words, [&](auto word) { return isNearly(text, word); });
    if (isSlip) {
        throw SourceFault(value.line,
                          unknownWord("account", text, words) + " (the name of a user may stand in double quotes)");
    }
    action.change.user = text;
}

int readCode(const YamlValue& value)
{
    constexpr std::uint32_t mostCode = 9999;
    const bool isNumber = value.kind == YamlValue::Kind::plain && !value.text.empty() &&
                          value.text.find_first_not_of("0123456789") == std::string::npos;
    if (isNumber) {
        return static_cast<int>(readWhole(value, "the code of an error", 1, mostCode));
    }
    return static_cast<int>(readChoice(value, "error of iCloud", cloudErrorNames())) + 1;
}

CloudOperation readOperation(const YamlValue& value)
{
    std::array<std::string_view, cloudOperations.size()> names;
    std::ranges::transform(cloudOperations, names.begin(), [](const auto& operation) { return operation.second; });
    return cloudOperations[readChoice(value, "kind of request", names)].first;
}

int readTimes(const YamlValue& value, std::string_view what)
{
    constexpr std::uint32_t mostTimes = 1'000'000;
    return static_cast<int>(readWhole(value, what, 1, mostTimes));
}

constexpr std::array<FieldRow<CloudFault>, 5> faultFields{{
    {"code", [](auto& fault, auto& value, auto&) { fault.error = cloudError(readCode(value)); }, true},
    {"times", [](auto& fault, auto& value, auto&) { fault.times = readTimes(value, "'times'"); }},
    {"retryAfter",
     [](auto& fault, auto& value, auto&) {
         constexpr double aDay = 86'400.0;
         fault.error.retryAfter = readNumber(value, "'retryAfter' (in seconds)", 0.0, aDay);
     }},
    {"operation", [](auto& fault, auto& value, auto&) { fault.operation = readOperation(value); }},
    {"probability",
     [](auto& fault, auto& value, auto&) { fault.probability = readNumber(value, "'probability'", 0.0, 1.0); }},
}};

void readFault(ChangeCloud& action, const YamlValue& value, const ReadContext& context)
{
    auto& fault = action.change.fault.emplace();
    if (isNone(value)) {
        return;
    }
    fault = CloudFault{.error = cloudError(CKError::internalError)};
    if (value.isMap()) {
        readFields(value, "a failure of iCloud", faultFields, *fault, context);
    } else {
        fault->error = cloudError(readCode(value));
    }
}

constexpr std::array<FieldRow<LostAnswers>, 2> lostAnswerFields{{
    {"times", [](auto& lost, auto& value, auto&) { lost.times = readTimes(value, "'times'"); }},
    {"operation", [](auto& lost, auto& value, auto&) { lost.operation = readOperation(value); }},
}};

void readLostAnswers(ChangeCloud& action, const YamlValue& value, const ReadContext& context)
{
    auto& lost = action.change.lostAnswers.emplace();
    if (value.isMap()) {
        readFields(value, "'loseAnswers'", lostAnswerFields, lost, context);
    } else {
        lost.times = readTimes(value, "'loseAnswers'");
    }
}

void readQuota(ChangeCloud& action, const YamlValue& value, const ReadContext&)
{
    static constexpr std::array<Word<std::optional<std::uint64_t>>, 2> words{{{"ok", std::nullopt}, {"full", 0}}};
    constexpr double mostBytes = 1e15;
    const bool isNumber = value.kind == YamlValue::Kind::plain && !value.text.empty() && value.text.front() >= '0' &&
                          value.text.front() <= '9';
    if (isNumber) {
        action.change.quota = static_cast<std::uint64_t>(readNumber(value, "'quota' (in bytes)", 0.0, mostBytes));
    } else {
        action.change.quota = readWord(value, "quota", words);
    }
}

bool readIsUp(const YamlValue& value)
{
    static constexpr std::array<Word<bool>, 2> words{{{"up", true}, {"down", false}}};
    return readWord(value, "network", words);
}

constexpr std::array<FieldRow<ChangeCloud>, 7> cloudFields{{
    {"account", readAccount},
    {"user", [](auto& action, auto& value, auto&) { action.change.user = readText(value, "'user'"); }},
    {"network", [](auto& action, auto& value, auto&) { action.change.isNetworkUp = readIsUp(value); }},
    {"quota", readQuota},
    {"fail", readFault},
    {"latency", [](auto& action, auto& value, auto&) { action.change.latency = readSpan(value, "'latency'"); }},
    {"loseAnswers", readLostAnswers},
}};

void readSequence(CompanionPhone::Command& command, const YamlValue& value, const ReadContext&)
{
    constexpr double most = 9'007'199'254'740'992.0; // 2^53: doubles hold all integers up to here
    const double sequence = readNumber(value, "'sequence'", -most, most);
    command.sequence = static_cast<std::int64_t>(sequence);
    if (static_cast<double>(*command.sequence) != sequence) {
        throw SourceFault(value.line, "'sequence' must be a whole number, not " + inQuotes(value.text));
    }
}

constexpr std::array<FieldRow<CompanionPhone::Command>, 3> phoneFields{{
    {"arm", [](auto& command, auto& value, auto&) { command.arm = readFlag(value, "'arm'"); }, true},
    {"sequence", readSequence},
    {"issuedAgo",
     [](auto& command, auto& value, auto&) { command.issuedAgo = toSeconds(readSpan(value, "'issuedAgo'")); }},
}};

} // namespace

ChangeCloud readCloud(const YamlValue& value, const ReadContext& context)
{
    ChangeCloud action;
    if (!value.isMap()) {
        readAccount(action, value, context);
        return action;
    }
    readFields(value, "'icloud'", cloudFields, action, context);
    if (value.keys.empty()) {
        throw SourceFault(value.line, "'icloud' needs at least one key, as in {icloud: {account: maya}}");
    }
    return action;
}

ChangeCloud readNetwork(const YamlValue& value)
{
    ChangeCloud action;
    action.change.isNetworkUp = readIsUp(value);
    return action;
}

UsePhone readPhone(const YamlValue& value, const ReadContext& context)
{
    static constexpr std::array<Word<bool>, 2> words{{{"arm", true}, {"disarm", false}}};
    UsePhone action;
    if (value.isMap()) {
        readFields(value, "'phone'", phoneFields, action.command, context);
    } else {
        action.command.arm = readWord(value, "command of the phone", words);
    }
    return action;
}

DeleteAlerts readDeleteAlerts(const YamlValue& value)
{
    using Which = DeleteAlerts::Which;
    static constexpr std::array<Word<Which>, 3> words{
        {{"all", Which::all}, {"oldest", Which::oldest}, {"newest", Which::newest}}};
    return {readWord(value, "choice of alerts", words)};
}

} // namespace sentrel::simulation
