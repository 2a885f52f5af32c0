#pragma once

#include "simulation/mac/MacDescription.hpp"
#include "simulation/stage/ValueReader.hpp"

namespace sentrel::simulation {

/// The `mac` of a scenario; what it leaves out is as in a fresh `MacDescription`. Throws `SourceFault`.
///
/// An audio device needs its `id`. It is a built-in one at half volume unless it says otherwise, with 'vmvc' and 'mute'
/// on output element 0. `elements` says which properties it has on which elements: `[0, 1]` (all of vmvc, volm and
/// mute), `{vmvc: [0], volm: [1, 2]}`, or with values `{volm: {1: 0.3, 2: 0.5}, mute: {0: true}}`. `transport` is a
/// word such as `built-in` or its four-character code. Without `defaultOutput` the output is device 73, or the first
/// one when there is no 73.
[[nodiscard]] simulation::MacDescription readMac(const YamlValue& value, const ReadContext& context);

/// Every key of `mac`.
[[nodiscard]] std::vector<std::string_view> macNames();

/// Words for the state of the power sources, also used by an action.
[[nodiscard]] simulation::MacDescription::Power readPower(const YamlValue& value);

/// How many displays there are; none is a Mac with its lid closed and nothing connected.
[[nodiscard]] std::size_t readDisplayCount(const YamlValue& value);

/// How the login panel is answered.
[[nodiscard]] simulation::LoginAnswer readLoginAnswer(const YamlValue& value);

} // namespace sentrel::simulation
