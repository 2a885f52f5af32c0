#pragma once

#include "simulation/stage/ValueType.hpp"

#include <any>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace sentrel::simulation {

class MacSession;

/// The name of an audio device by its number.
using DeviceName = std::function<std::string(std::uint32_t)>;

/// One action of the scenario language with its values.
class Action {
public:
    /// Why this MacBook can't do it (an unknown device or fault), with the nearest valid word; empty if it can.
    [[nodiscard]] std::string objection(MacSession& session) const;

    /// Performs it now, and everything due. Returns why a person could not do it; empty if done.
    [[nodiscard]] std::string perform(MacSession& session) const;

    /// The action as seen from outside, in one sentence; none if the simulated MacBook notes it as an event, which is
    /// told instead.
    [[nodiscard]] std::optional<std::string> tell(const DeviceName& deviceName) const;

    /// Its word in the scenario language.
    [[nodiscard]] std::string_view name() const { return name_; }

    /// Its value, or null if the action has none of this type.
    template <class T> [[nodiscard]] const T* value() const { return std::any_cast<T>(&value_); }

private:
    friend struct ActionRow;

    std::string_view name_;
    std::any value_;
    std::function<std::string(MacSession&)> object_; ///< null: never objects
    std::function<std::string(MacSession&)> perform_;
    std::function<std::string(const DeviceName&)> tell_; ///< null: told as an event
};

/// A word of the scenario language that names an action.
struct ActionRow {
    std::string_view name;
    std::string_view example; ///< empty: takes no value
    std::string_view meaning; ///< for people who write scenarios
    std::function<Action(const YamlValue& value, const ReadContext& context)> read;
    Json schema; ///< of the value

    /// An action without a value. `perform`: `void(MacSession&)`. An action without `text` is told as an event.
    template <class Perform>
    static ActionRow plain(std::string_view name, std::string_view meaning, Perform perform, std::string text = {})
    {
        Action action;
        action.name_ = name;
        action.perform_ = [perform](MacSession& session) {
            perform(session);
            return std::string{};
        };
        if (!text.empty()) {
            action.tell_ = [text = std::move(text)](const DeviceName&) { return text; };
        }
        return {name, {}, meaning, [action](const YamlValue&, const ReadContext&) { return action; }, {}};
    }

    /// An action with a value. `perform`: `void` or `std::string(MacSession&, const T&)`, which returns why it could
    /// not be done. `tell`: `std::string(const T&)`, with an optional `const DeviceName&`; null if told as an event.
    /// `object`: `std::string(MacSession&, const T&)`, or null.
    template <class T, class Perform, class Tell = std::nullptr_t, class Object = std::nullptr_t>
    static ActionRow with(std::string_view name, std::string_view example, std::string_view meaning, ValueType<T> type,
                          Perform perform, Tell tell = nullptr, Object object = nullptr)
    {
        const std::string what = inQuotes(name);
        auto read = [=, read = std::move(type.read)](const YamlValue& value, const ReadContext& context) {
            Action action;
            const T content = read(value, what, context);
            action.name_ = name;
            action.value_ = content;
            action.perform_ = [perform, content](MacSession& session) {
                if constexpr (std::is_void_v<std::invoke_result_t<Perform, MacSession&, const T&>>) {
                    perform(session, content);
                    return std::string{};
                } else {
                    return std::string{perform(session, content)};
                }
            };
            if constexpr (std::is_invocable_v<Tell, const T&>) {
                action.tell_ = [tell, content](const DeviceName&) { return std::string{tell(content)}; };
            } else if constexpr (!std::is_null_pointer_v<Tell>) {
                action.tell_ = [tell, content](const DeviceName& deviceName) { return tell(content, deviceName); };
            }
            if constexpr (!std::is_null_pointer_v<Object>) {
                action.object_ = [object, content](MacSession& session) { return object(session, content); };
            }
            return action;
        };
        return {name, example, meaning, std::move(read), std::move(type.schema)};
    }
};

// The actions by subject.
[[nodiscard]] std::vector<ActionRow> hardwareActions();
[[nodiscard]] std::vector<ActionRow> systemActions();
[[nodiscard]] std::vector<ActionRow> cloudActions();
[[nodiscard]] std::vector<ActionRow> personActions();

/// Every action.
[[nodiscard]] const std::vector<ActionRow>& actionRows();

/// The name of every action.
[[nodiscard]] std::vector<std::string_view> actionNames();

/// The `do` of a step. Throws `SourceFault`; for a fault in a recording its message names that file and line, too.
[[nodiscard]] Action readAction(const YamlValue& value, const ReadContext& context);

} // namespace sentrel::simulation
