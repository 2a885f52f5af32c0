#include "simulation/stage/Action.hpp"

#include "simulation/stage/MacSession.hpp"

#include <algorithm>
#include <iterator>

namespace sentrel::simulation {

namespace {

const ActionRow* findRow(std::string_view name)
{
    const auto found = std::ranges::find(actionRows(), name, &ActionRow::name);
    return found == actionRows().end() ? nullptr : &*found;
}

} // namespace

std::string Action::objection(MacSession& session) const
{
    return object_ ? object_(session) : std::string{};
}

std::string Action::perform(MacSession& session) const
{
    std::string why = perform_(session);
    session.clock().runReady();
    return why;
}

std::optional<std::string> Action::tell(const DeviceName& deviceName) const
{
    return tell_ ? std::optional{tell_(deviceName)} : std::nullopt;
}

const std::vector<ActionRow>& actionRows()
{
    static const std::vector<ActionRow> rows = [] {
        std::vector<ActionRow> all;
        for (auto* const subject : {hardwareActions, systemActions, cloudActions, personActions}) {
            std::ranges::move(subject(), std::back_inserter(all));
        }
        return all;
    }();
    return rows;
}

std::vector<std::string_view> actionNames()
{
    std::vector<std::string_view> names;
    std::ranges::transform(actionRows(), std::back_inserter(names), &ActionRow::name);
    return names;
}

Action readAction(const YamlValue& value, const ReadContext& context)
{
    const bool isMap = value.isMap();
    if (isMap ? value.keys.size() != 1 : !value.isScalar()) {
        throw SourceFault(value.line, "'do' takes one action, such as 'arm' or {power: battery}");
    }
    const YamlValue& name = isMap ? value.keys.front() : value;
    const ActionRow* const row = findRow(name.text);
    if (row == nullptr) {
        throw SourceFault(name.line, unknownWord("action", name.text, actionNames()));
    }
    if (isMap && row->example.empty()) {
        throw SourceFault(name.line, inQuotes(name.text) + " takes no value: write {do: " + name.text + "}");
    }
    if (!isMap && !row->example.empty()) {
        throw SourceFault(name.line,
                          inQuotes(name.text) + " needs a value, for example {do: " + std::string{row->example} + "}");
    }
    return row->read(isMap ? value.items.front() : value, context);
}

} // namespace sentrel::simulation
