#include "simulation/icloud/PredicateSql.hpp"

#include "simulation/icloud/CloudErrorNames.hpp"
#include "simulation/icloud/ServerRecord.hpp"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string_view>

namespace sentrel::simulation {

namespace {

using Argument = ports::CloudPredicate::Argument;

constexpr std::size_t mostMembers = 250; // in a list after IN

[[noreturn]] void refuse()
{
    throw cloudError(CKError::invalidArguments);
}

/// The store's number of a kind of field: its index in `ServerValue`.
template <class Kind> std::int64_t kindOf()
{
    return static_cast<std::int64_t>(ServerValue{Kind{}}.index());
}

/// The column of a date that every record has; empty for other fields.
std::string_view columnOf(const std::string& name)
{
    if (name == "modificationDate") {
        return "r.modified";
    }
    return name == "creationDate" ? "r.created" : "";
}

/// "FIELD OPERATOR %@" with its argument.
class Comparison {
public:
    Comparison(std::string field, std::string operation, const Argument& argument)
        : field_(std::move(field)), operation_(std::move(operation))
    {
        if (const auto* const members = std::get_if<std::vector<std::int64_t>>(&argument)) {
            takeMembers(*members);
        } else if (operation_ == "==" || operation_ == "=") {
            takeScalar(argument, "= ?");
        } else if (operation_ == ">" && !std::holds_alternative<std::string>(argument)) {
            takeScalar(argument, "> ?");
        } else {
            refuse();
        }
    }

    [[nodiscard]] SqlPart sql() const
    {
        if (const std::string_view column = columnOf(field_); !column.empty()) {
            return ofColumn(column);
        }
        SqlPart part{"EXISTS(SELECT 1 FROM fields f WHERE f.record = r.id AND f.name = ? AND f.kind = ? AND f.value " +
                         test_ + ")",
                     {field_, kind_}};
        part.values.insert(part.values.end(), values_.begin(), values_.end());
        return part;
    }

private:
    [[nodiscard]] SqlPart ofColumn(std::string_view column) const
    {
        if (kind_ != kindOf<Date>()) {
            refuse();
        }
        return {std::string{column} + " " + test_, values_};
    }

    void takeMembers(const std::vector<std::int64_t>& members)
    {
        if (operation_ != "IN" || members.size() > mostMembers) {
            refuse();
        }
        kind_ = kindOf<std::int64_t>();
        test_ = "IN (";
        for (const std::int64_t member : members) {
            test_ += values_.empty() ? "?" : ", ?";
            values_.emplace_back(member);
        }
        test_ += ")";
    }

    void takeScalar(const Argument& argument, const char* test)
    {
        test_ = test;
        if (const auto* const text = std::get_if<std::string>(&argument)) {
            kind_ = kindOf<std::string>();
            values_.emplace_back(*text);
        } else if (const auto* const integer = std::get_if<std::int64_t>(&argument)) {
            kind_ = kindOf<std::int64_t>();
            values_.emplace_back(*integer);
        } else if (const auto* const date = std::get_if<Date>(&argument)) {
            if (!std::isfinite(date->secondsSinceReferenceDate)) {
                refuse();
            }
            kind_ = kindOf<Date>();
            values_.emplace_back(date->secondsSinceReferenceDate);
        }
    }

    std::string field_;
    std::string operation_;
    std::int64_t kind_ = 0;
    std::string test_;
    std::vector<SqliteValue> values_;
};

std::vector<std::string> wordsOf(const std::string& format)
{
    std::istringstream stream{format};
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

} // namespace

SqlPart conditionOf(const ports::CloudPredicate& predicate)
{
    const std::vector<std::string> words = wordsOf(predicate.format);
    if (words == std::vector<std::string>{"TRUEPREDICATE"} && predicate.arguments.empty()) {
        return {"1", {}};
    }
    // Comparisons of three words each, with an AND between two.
    if (predicate.arguments.empty() || words.size() != predicate.arguments.size() * 4 - 1) {
        refuse();
    }
    SqlPart whole;
    std::size_t place = 0;
    for (const Argument& argument : predicate.arguments) {
        if (words[place + 2] != "%@" || (place > 0 && words[place - 1] != "AND")) {
            refuse();
        }
        const SqlPart part = Comparison{words[place], words[place + 1], argument}.sql();
        whole.sql += (place > 0 ? " AND " : "") + part.sql;
        whole.values.insert(whole.values.end(), part.values.begin(), part.values.end());
        place += 4;
    }
    return whole;
}

std::vector<std::pair<std::string, std::string>> comparisonsOf(const ports::CloudPredicate& predicate)
{
    const std::vector<std::string> words = wordsOf(predicate.format);
    std::vector<std::pair<std::string, std::string>> comparisons;
    for (std::size_t place = 0; place + 2 < words.size(); place += 4) {
        comparisons.emplace_back(words[place], words[place + 1]);
    }
    return comparisons;
}

SqlPart orderOf(const std::string& sortKey)
{
    if (const std::string_view column = columnOf(sortKey); !column.empty()) {
        return {std::string{column}, {}};
    }
    return {"(SELECT f.value FROM fields f WHERE f.record = r.id AND f.name = ?)", {sortKey}};
}

} // namespace sentrel::simulation
