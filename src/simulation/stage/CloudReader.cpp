#include "simulation/icloud/CloudErrorNames.hpp"
#include "simulation/stage/MacReader.hpp"
#include "simulation/stage/MacWords.hpp"

#include <algorithm>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::uint32_t mostTimes = 1'000'000;

ValueType<int> timesType()
{
    return type::made(type::whole(1, mostTimes), [](std::uint32_t times) { return static_cast<int>(times); });
}

bool isPlainNumber(const YamlValue& value)
{
    return value.kind == YamlValue::Kind::plain && !value.text.empty() && value.text.front() >= '0' &&
           value.text.front() <= '9';
}

/// The name of a user, or a word for the account's state.
void readAccount(CloudChange& change, const YamlValue& value, const ReadContext& /*context*/)
{
    const std::string text = isNone(value) ? "none" : readText(value, "'account'");
    std::vector<std::string_view> words;
    for (const auto& status : accountWords) {
        if (status.text == text) {
            change.account = status.meaning;
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
    change.user = text;
}

/// A number or a name.
ValueType<ports::CloudError> errorType()
{
    constexpr std::uint32_t mostCode = 9999;
    return {[](auto& value, auto, auto&) {
                return cloudError(isPlainNumber(value)
                                      ? static_cast<int>(readWhole(value, "the code of an error", 1, mostCode))
                                      : static_cast<int>(readChoice(value, "error of iCloud", cloudErrorNames())) + 1);
            },
            {{"anyOf", {{{"type", "integer"}, {"minimum", 1}, {"maximum", mostCode}}, {{"enum", cloudErrorNames()}}}}}};
}

ValueType<CloudOperation> operationType()
{
    return type::word("kind of request", cloudOperations);
}

/// `none` heals all; otherwise an error, or a map.
ValueType<std::optional<CloudFault>> faultType()
{
    struct Draft {
        ports::CloudError error = cloudError(CKError::internalError);
        int times = -1;
        std::optional<double> retryAfter;
        std::optional<CloudOperation> operation;
        double probability = 1.0;
    };
    constexpr double aDay = 86'400.0;
    Fields<Draft> fields{
        required(field("code", &Draft::error, errorType())),
        field("times", &Draft::times, timesType()),
        field("retryAfter", &Draft::retryAfter, type::called("'retryAfter' (in seconds)", type::number(0.0, aDay))),
        field("operation", &Draft::operation, operationType()),
        field("probability", &Draft::probability, type::number(0.0, 1.0)),
    };
    auto whole = type::made(type::map(std::move(fields)), [](Draft draft) {
        draft.error.retryAfter = draft.retryAfter;
        return CloudFault{.error = std::move(draft.error),
                          .operation = draft.operation,
                          .times = draft.times,
                          .probability = draft.probability};
    });
    auto brief = type::made(errorType(), [](ports::CloudError error) { return CloudFault{.error = std::move(error)}; });
    return type::orNone(type::called("a failure of iCloud", type::either(std::move(whole), std::move(brief))));
}

ValueType<LostAnswers> lostAnswersType()
{
    Fields<LostAnswers> fields{
        field("times", &LostAnswers::times, timesType()),
        field("operation", &LostAnswers::operation, operationType()),
    };
    return type::either(type::map(std::move(fields)),
                        type::made(timesType(), [](int times) { return LostAnswers{times}; }));
}

/// Bytes, or a word.
ValueType<std::optional<std::uint64_t>> quotaType()
{
    static constexpr std::array<Word<std::optional<std::uint64_t>>, 2> words{{{"ok", std::nullopt}, {"full", 0}}};
    constexpr double mostBytes = 1e15;
    auto word = type::word("quota", words);
    Json schema{{"anyOf", {{{"type", "number"}, {"minimum", 0}, {"maximum", mostBytes}}, word.schema}}};
    return {[readTheWord = word.read](auto& value, auto what, auto& context) -> std::optional<std::uint64_t> {
                if (isPlainNumber(value)) {
                    return static_cast<std::uint64_t>(readNumber(value, "'quota' (in bytes)", 0.0, mostBytes));
                }
                return readTheWord(value, what, context);
            },
            std::move(schema)};
}

Field<CloudChange> accountField()
{
    return {"account", readAccount, {{"type", {"string", "null"}}}};
}

} // namespace

ValueType<CloudChange> cloudType()
{
    Fields<CloudChange> fields{
        accountField(),
        field("user", &CloudChange::user, type::text()),
        field("network", &CloudChange::isNetworkUp, type::word("network", networkWords)),
        field("quota", &CloudChange::quota, quotaType()),
        field("fail", &CloudChange::fault, faultType()),
        field("latency", &CloudChange::latency, type::span()),
        field("loseAnswers", &CloudChange::lostAnswers, lostAnswersType()),
    };
    const ValueType<CloudChange> account{[](auto& value, auto, auto& context) {
                                             CloudChange change;
                                             readAccount(change, value, context);
                                             return change;
                                         },
                                         accountField().schema};
    return type::either(type::map(std::move(fields), "{icloud: {account: maya}}"), account);
}

} // namespace sentrel::simulation
