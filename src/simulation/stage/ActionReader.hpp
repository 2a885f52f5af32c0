#pragma once

#include "simulation/stage/Action.hpp"
#include "simulation/stage/ValueReader.hpp"

namespace sentrel::simulation {

/// The `do` of a step. Throws `SourceFault`; for a fault in a recording its message names that file and line, too.
///
/// `{accelerometer: resting}` (or `{resting: true}`) begins to deliver a machine at rest, `still` (or `{resting:
/// false}`) ends that. `{fail: {PORT: WHAT}}` takes the name of a fault, a list of them, `{FAULT: times}`, or `none`,
/// which heals the port.
[[nodiscard]] Action readAction(const YamlValue& value, const ReadContext& context);

/// The name of every action.
[[nodiscard]] std::vector<std::string_view> actionNames();

} // namespace sentrel::simulation
