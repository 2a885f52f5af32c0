#include "simulation/stage/Expectation.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace sentrel::simulation {

namespace {

bool matches(const Json& expected, const Json& actual, double tolerance);

bool numbersMatch(const Json& expected, const Json& actual, double tolerance)
{
    return std::abs(expected.get<double>() - actual.get<double>()) <= tolerance;
}

bool membersMatch(const Json& expected, const Json& actual, double tolerance)
{
    return std::all_of(expected.items().begin(), expected.items().end(), [&](const auto& entry) {
        const Json* const found = member(actual, entry.key());
        return matches(entry.value(), found == nullptr ? Json{} : *found, tolerance);
    });
}

bool matches(const Json& expected, const Json& actual, double tolerance)
{
    if (expected.is_number() && actual.is_number()) {
        return numbersMatch(expected, actual, tolerance);
    }
    if (expected.is_object() && actual.is_object()) {
        return membersMatch(expected, actual, tolerance);
    }
    if (expected.is_array() && actual.is_array()) {
        return std::ranges::equal(expected, actual,
                                  [&](const Json& left, const Json& right) { return matches(left, right, tolerance); });
    }
    return expected == actual;
}

std::string shown(const Json& value)
{
    try {
        return encodeJson(value);
    } catch (const JsonEncodingError&) {
        return "a number that isn't finite";
    }
}

/// Collects the differences for a list with contained and absent items.
void collectItems(const Expectation& expectation, const std::string& path, const Json& expected, const Json& actual,
                  std::vector<Mismatch>& found)
{
    auto rest = actual.begin();
    for (const Json& item : expected.value(containedItems, Json::array())) {
        const auto place = std::find(rest, actual.end(), item);
        if (place == actual.end()) {
            const bool isThere = std::ranges::find(actual, item) != actual.end();
            found.push_back({path, "a list with " + shown(item) + (isThere ? " in this place" : ""), shown(actual),
                             expectation.line});
            continue;
        }
        rest = std::next(place);
    }
    for (const Json& item : expected.value(absentItems, Json::array())) {
        if (std::ranges::find(actual, item) != actual.end()) {
            found.push_back({path, "a list without " + shown(item), shown(actual), expectation.line});
        }
    }
}

/// Descends to the members that differ, so that messages name only these.
void collect(const Expectation& expectation, const std::string& path, const Json& expected, const Json* actual,
             std::vector<Mismatch>& found)
{
    if (expected.is_object() && actual != nullptr && actual->is_array()) {
        return collectItems(expectation, path, expected, *actual, found);
    }
    if (expected.is_object() && actual != nullptr && actual->is_object()) {
        for (const auto& [key, value] : expected.items()) {
            std::string deeper = path;
            deeper += '.';
            deeper += key;
            collect(expectation, deeper, value, member(*actual, key), found);
        }
        return;
    }
    if (matches(expected, actual == nullptr ? Json{} : *actual, expectation.tolerance)) {
        return;
    }
    found.push_back({path, shown(expected), actual == nullptr ? "not there" : shown(*actual), expectation.line});
}

} // namespace

std::vector<Mismatch> mismatches(const Expectation& expectation, const Json& state)
{
    const Json* const actual = member(state, expectation.key);
    if (actual == nullptr) {
        return {{expectation.key, shown(expectation.expected), "not known", expectation.line}};
    }
    std::vector<Mismatch> found;
    collect(expectation, expectation.key, expectation.expected, actual, found);
    return found;
}

Mismatch impossibleStep(const std::string& why, int line)
{
    return {"this step", "possible", why, line};
}

std::string sentence(const Mismatch& mismatch)
{
    if (mismatch.path == "this step") {
        return "this step can't be done: " + mismatch.actual;
    }
    return "expected " + mismatch.path + " to be " + mismatch.expected + ", but it is " + mismatch.actual;
}

} // namespace sentrel::simulation
